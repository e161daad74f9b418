#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velcg/Export.hpp"
#include "velcg/GraphicalBlock.hpp"

namespace coder {
class Repository;
namespace descriptor {
class ToAsyncQueueBlock;
} // namespace descriptor
} // namespace coder

namespace VelCG {

// One signal that generated code sends to an asynchronous queue for
// streaming, with a full description of its data type. A bus signal is one
// record whose leaf elements are further records, one per bus leaf; the
// record owns its leaves and deletes them with itself.
class VELCG_API ToAsyncQueueBlock : public GraphicalBlock {
public:
    // Takes ownership of impl, as GraphicalBlock does.
    explicit ToAsyncQueueBlock(GraphicalBlockIF* impl);
    ~ToAsyncQueueBlock() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    bool getIsFixedPoint() const { return isFixedPoint_; }
    void setIsFixedPoint(const bool& v) { isFixedPoint_ = v; }
    bool getIsEnum() const { return isEnum_; }
    void setIsEnum(const bool& v) { isEnum_ = v; }
    int getDataTypeId() const { return dataTypeId_; }
    void setDataTypeId(const int& v) { dataTypeId_ = v; }
    int getDataTypeSize() const { return dataTypeSize_; }
    void setDataTypeSize(const int& v) { dataTypeSize_ = v; }
    int getFxpNumericType() const { return fxpNumericType_; }
    void setFxpNumericType(const int& v) { fxpNumericType_ = v; }
    unsigned getFxpSignedness() const { return fxpSignedness_; }
    void setFxpSignedness(const unsigned& v) { fxpSignedness_ = v; }
    int getFxpWordLength() const { return fxpWordLength_; }
    void setFxpWordLength(const int& v) { fxpWordLength_ = v; }
    int getFxpFractionLength() const { return fxpFractionLength_; }
    void setFxpFractionLength(const int& v) { fxpFractionLength_ = v; }
    double getFxpSlopeAdjFactor() const { return fxpSlopeAdjFactor_; }
    void setFxpSlopeAdjFactor(const double& v) { fxpSlopeAdjFactor_ = v; }
    int getFxpFixedExponent() const { return fxpFixedExponent_; }
    void setFxpFixedExponent(const int& v) { fxpFixedExponent_ = v; }
    double getFxpBias() const { return fxpBias_; }
    void setFxpBias(const double& v) { fxpBias_ = v; }
    const std::wstring& getEnumClassName() const { return enumClassName_; }
    void setEnumClassName(const std::wstring& v) { enumClassName_ = v; }
    const std::wstring& getEnumClassification() const { return enumClassification_; }
    void setEnumClassification(const std::wstring& v) { enumClassification_ = v; }
    const std::vector<std::wstring>& getEnumLabels() const { return enumLabels_; }
    void setEnumLabels(const std::vector<std::wstring>& v) { enumLabels_ = v; }
    const std::vector<int>& getEnumValues() const { return enumValues_; }
    void setEnumValues(const std::vector<int>& v) { enumValues_ = v; }
    bool getIsComplex() const { return isComplex_; }
    void setIsComplex(const bool& v) { isComplex_ = v; }
    bool getIsDiscrete() const { return isDiscrete_; }
    void setIsDiscrete(const bool& v) { isDiscrete_ = v; }
    bool getIsVirtualBus() const { return isVirtualBus_; }
    void setIsVirtualBus(const bool& v) { isVirtualBus_ = v; }
    bool getIsNVBus() const { return isNVBus_; }
    void setIsNVBus(const bool& v) { isNVBus_ = v; }
    bool getIsVarDims() const { return isVarDims_; }
    void setIsVarDims(const bool& v) { isVarDims_ = v; }
    const std::vector<int>& getDimensions() const { return dimensions_; }
    void setDimensions(const std::vector<int>& v) { dimensions_ = v; }
    // Suffixed so that it does not hide the graphical block's getBlockPath.
    const std::wstring& getBlockPathTAQ() const { return blockPath_; }
    void setBlockPath(const std::wstring& v) { blockPath_ = v; }
    const std::wstring& getBlockSID() const { return blockSID_; }
    void setBlockSID(const std::wstring& v) { blockSID_ = v; }
    int getPortNumber() const { return portNumber_; }
    void setPortNumber(const int& v) { portNumber_ = v; }
    std::wstring getSignalName() const { return signalName_; }
    void setSignalName(const std::wstring& v) { signalName_ = v; }
    const std::wstring& getActSrcBlockPath() const { return actSrcBlockPath_; }
    void setActSrcBlockPath(const std::wstring& v) { actSrcBlockPath_ = v; }
    const std::wstring& getActSrcBlockSID() const { return actSrcBlockSID_; }
    void setActSrcBlockSID(const std::wstring& v) { actSrcBlockSID_ = v; }
    int getActSrcPortNumber() const { return actSrcPortNumber_; }
    void setActSrcPortNumber(const int& v) { actSrcPortNumber_ = v; }
    std::wstring getActSrcDWorkName() const { return actSrcDWorkName_; }
    void setActSrcDWorkName(const std::wstring& v) { actSrcDWorkName_ = v; }
    int getActSrcStartElement() const { return actSrcStartElement_; }
    void setActSrcStartElement(const int& v) { actSrcStartElement_ = v; }
    const std::wstring& getSignalSourceUUID() const { return signalSourceUUID_; }
    void setSignalSourceUUID(const std::wstring& v) { signalSourceUUID_ = v; }
    std::int64_t getSignalSourceUUIDasInteger() const { return signalSourceUUIDasInteger_; }
    void setSignalSourceUUIDasInteger(const std::int64_t& v) { signalSourceUUIDasInteger_ = v; }
    const std::wstring& getUnits() const { return units_; }
    void setUnits(const std::wstring& v) { units_ = v; }
    unsigned getUniqueId() const { return uniqueId_; }
    void setUniqueId(const unsigned& v) { uniqueId_ = v; }
    int getTid() const { return tid_; }
    void setTid(const int& v) { tid_ = v; }
    std::int64_t getNVBusOffset() const { return nvBusOffset_; }
    void setNVBusOffset(const std::int64_t& v) { nvBusOffset_ = v; }
    bool getIsLiveStreaming() const { return isLiveStreaming_; }
    void setIsLiveStreaming(const bool& v) { isLiveStreaming_ = v; }
    bool getIsDeferredStreaming() const { return isDeferredStreaming_; }
    void setIsDeferredStreaming(const bool& v) { isDeferredStreaming_ = v; }

    const std::vector<ToAsyncQueueBlock*>& getLeafElements() const { return leafElements_; }
    // Appends a leaf and takes ownership (the caller keeps it if the call
    // throws). Null, a current leaf, this record itself or a record that
    // holds this one among its leaves is refused with a diagnostic.
    void addLeafElement(ToAsyncQueueBlock* leaf);
    // Makes the given records the leaves: current leaves missing from the
    // list are deleted, new ones are taken over. Null, a record listed
    // twice, this record or a record holding it is refused with a
    // diagnostic before anything changes.
    void setLeafElements(const std::vector<ToAsyncQueueBlock*>& leaves);

    // Writes the record into the store with its leaves nested, in order,
    // then its enumeration labels, enumeration values and dimensions. The
    // units and the graphical-block answers are not written. REQUIRES: a
    // transaction is open on repository.
    coder::descriptor::ToAsyncQueueBlock serializeAsync(coder::Repository& repository) const;

private:
    // Whether record is one of the leaves, at any depth.
    bool holds(const ToAsyncQueueBlock* record) const;
    void checkLeaf(const ToAsyncQueueBlock* leaf) const;

    bool isFixedPoint_ = false;
    bool isEnum_ = false;
    int dataTypeId_ = 0;
    int dataTypeSize_ = 0;
    int fxpNumericType_ = 0;
    unsigned fxpSignedness_ = 0;
    int fxpWordLength_ = 0;
    int fxpFractionLength_ = 0;
    double fxpSlopeAdjFactor_ = 0.0;
    int fxpFixedExponent_ = 0;
    double fxpBias_ = 0.0;
    std::wstring enumClassName_;
    std::wstring enumClassification_;
    std::vector<std::wstring> enumLabels_;
    std::vector<int> enumValues_;
    bool isComplex_ = false;
    bool isDiscrete_ = false;
    bool isVirtualBus_ = false;
    bool isNVBus_ = false;
    bool isVarDims_ = false;
    std::vector<int> dimensions_;
    std::wstring blockPath_;
    std::wstring blockSID_;
    int portNumber_ = 0;
    std::wstring signalName_;
    std::wstring actSrcBlockPath_;
    std::wstring actSrcBlockSID_;
    int actSrcPortNumber_ = 0;
    std::wstring actSrcDWorkName_;
    int actSrcStartElement_ = 0;
    std::wstring signalSourceUUID_;
    std::int64_t signalSourceUUIDasInteger_ = 0;
    std::wstring units_;
    unsigned uniqueId_ = 0;
    int tid_ = 0;
    std::vector<ToAsyncQueueBlock*> leafElements_;
    std::int64_t nvBusOffset_ = 0;
    bool isLiveStreaming_ = false;
    bool isDeferredStreaming_ = false;
};

} // namespace VelCG
