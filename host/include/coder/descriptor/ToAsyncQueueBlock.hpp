#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// A signal sent to an asynchronous queue. A bus keeps its leaves nested in
// LeafElements.
class VELHOST_API ToAsyncQueueBlock : public Object {
public:
    static const RecordKind& kind();

    bool getIsFixedPoint() const;
    bool getIsEnum() const;
    std::int32_t getDataTypeId() const;
    std::int32_t getDataTypeSize() const;
    std::int32_t getFxpNumericType() const;
    std::uint32_t getFxpSignedness() const;
    std::int32_t getFxpWordLength() const;
    std::int32_t getFxpFractionLength() const;
    double getFxpSlopeAdjFactor() const;
    std::int32_t getFxpFixedExponent() const;
    double getFxpBias() const;
    ustring getEnumClassName() const;
    ustring getEnumClassification() const;
    bool getIsComplex() const;
    bool getIsDiscrete() const;
    bool getIsVirtualBus() const;
    bool getIsNVBus() const;
    bool getIsVarDims() const;
    ustring getBlockPath() const;
    ustring getBlockSID() const;
    std::int32_t getPortNumber() const;
    ustring getSignalName() const;
    ustring getActSrcBlockPath() const;
    ustring getActSrcBlockSID() const;
    std::int32_t getActSrcPortNumber() const;
    ustring getActSrcDWorkName() const;
    std::int32_t getActSrcStartElement() const;
    ustring getSignalSourceUUID() const;
    std::int64_t getSignalSourceUUIDasInteger() const;
    std::uint32_t getUniqueId() const;
    std::int32_t getTid() const;
    std::int64_t getNVBusOffset() const;
    bool getIsLiveStreaming() const;
    bool getIsDeferredStreaming() const;

    Sequence<ToAsyncQueueBlock> getLeafElements() const;
    Sequence<StringListElement> getEnumLabels() const;
    Sequence<IntegerArrayElement> getEnumValues() const;
    Sequence<IntegerArrayElement> getDimensions() const;
};

class VELHOST_API ToAsyncQueueBlockCreator : public Creator {
public:
    explicit ToAsyncQueueBlockCreator(Repository& repository);

    void setIsFixedPoint(bool value);
    void setIsEnum(bool value);
    void setDataTypeId(std::int32_t value);
    void setDataTypeSize(std::int32_t value);
    void setFxpNumericType(std::int32_t value);
    void setFxpSignedness(std::uint32_t value);
    void setFxpWordLength(std::int32_t value);
    void setFxpFractionLength(std::int32_t value);
    void setFxpSlopeAdjFactor(double value);
    void setFxpFixedExponent(std::int32_t value);
    void setFxpBias(double value);
    void setEnumClassName(const ustring& value);
    void setEnumClassification(const ustring& value);
    void setIsComplex(bool value);
    void setIsDiscrete(bool value);
    void setIsVirtualBus(bool value);
    void setIsNVBus(bool value);
    void setIsVarDims(bool value);
    void setBlockPath(const ustring& value);
    void setBlockSID(const ustring& value);
    void setPortNumber(std::int32_t value);
    void setSignalName(const ustring& value);
    void setActSrcBlockPath(const ustring& value);
    void setActSrcBlockSID(const ustring& value);
    void setActSrcPortNumber(std::int32_t value);
    void setActSrcDWorkName(const ustring& value);
    void setActSrcStartElement(std::int32_t value);
    void setSignalSourceUUID(const ustring& value);
    void setSignalSourceUUIDasInteger(std::int64_t value);
    void setUniqueId(std::uint32_t value);
    void setTid(std::int32_t value);
    void setNVBusOffset(std::int64_t value);
    void setIsLiveStreaming(bool value);
    void setIsDeferredStreaming(bool value);

    ToAsyncQueueBlock createToAsyncQueueBlock();
};

} // namespace coder::descriptor
