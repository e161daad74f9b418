#include "coder/descriptor/ToAsyncQueueBlock.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t {
    kIsFixedPoint,
    kIsEnum,
    kDataTypeId,
    kDataTypeSize,
    kFxpNumericType,
    kFxpSignedness,
    kFxpWordLength,
    kFxpFractionLength,
    kFxpSlopeAdjFactor,
    kFxpFixedExponent,
    kFxpBias,
    kEnumClassName,
    kEnumClassification,
    kIsComplex,
    kIsDiscrete,
    kIsVirtualBus,
    kIsNVBus,
    kIsVarDims,
    kBlockPath,
    kBlockSID,
    kPortNumber,
    kSignalName,
    kActSrcBlockPath,
    kActSrcBlockSID,
    kActSrcPortNumber,
    kActSrcDWorkName,
    kActSrcStartElement,
    kSignalSourceUUID,
    kSignalSourceUUIDasInteger,
    kUniqueId,
    kTid,
    kNVBusOffset,
    kIsLiveStreaming,
    kIsDeferredStreaming
};
enum List : std::size_t { kLeafElementsList, kEnumLabelsList, kEnumValuesList, kDimensionsList };
} // namespace

const RecordKind& ToAsyncQueueBlock::kind() {
    static const RecordKind kind{
        "ToAsyncQueueBlock",
        {
            {"IsFixedPoint", FieldType::Boolean, false, nullptr, 0, 0},
            {"IsEnum", FieldType::Boolean, false, nullptr, 0, 0},
            {"DataTypeId", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"DataTypeSize", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"FxpNumericType", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"FxpSignedness", FieldType::Integer, false, nullptr, 0, UINT32_MAX},
            {"FxpWordLength", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"FxpFractionLength", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"FxpSlopeAdjFactor", FieldType::Real, false, nullptr, 0, 0},
            {"FxpFixedExponent", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"FxpBias", FieldType::Real, false, nullptr, 0, 0},
            {"EnumClassName", FieldType::Text, false, nullptr, 0, 0},
            {"EnumClassification", FieldType::Text, false, nullptr, 0, 0},
            {"IsComplex", FieldType::Boolean, false, nullptr, 0, 0},
            {"IsDiscrete", FieldType::Boolean, false, nullptr, 0, 0},
            {"IsVirtualBus", FieldType::Boolean, false, nullptr, 0, 0},
            {"IsNVBus", FieldType::Boolean, false, nullptr, 0, 0},
            {"IsVarDims", FieldType::Boolean, false, nullptr, 0, 0},
            {"BlockPath", FieldType::Text, false, nullptr, 0, 0},
            {"BlockSID", FieldType::Text, false, nullptr, 0, 0},
            {"PortNumber", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"SignalName", FieldType::Text, false, nullptr, 0, 0},
            {"ActSrcBlockPath", FieldType::Text, false, nullptr, 0, 0},
            {"ActSrcBlockSID", FieldType::Text, false, nullptr, 0, 0},
            {"ActSrcPortNumber", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"ActSrcDWorkName", FieldType::Text, false, nullptr, 0, 0},
            {"ActSrcStartElement", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"SignalSourceUUID", FieldType::Text, false, nullptr, 0, 0},
            {"SignalSourceUUIDasInteger", FieldType::Integer, false, nullptr, INT64_MIN, INT64_MAX},
            {"UniqueId", FieldType::Integer, false, nullptr, 0, UINT32_MAX},
            {"Tid", FieldType::Integer, false, nullptr, INT32_MIN, INT32_MAX},
            {"NVBusOffset", FieldType::Integer, false, nullptr, INT64_MIN, INT64_MAX},
            {"IsLiveStreaming", FieldType::Boolean, false, nullptr, 0, 0},
            {"IsDeferredStreaming", FieldType::Boolean, false, nullptr, 0, 0},
        },
        {
            {"LeafElements", &ToAsyncQueueBlock::kind, FieldType::Reference},
            {"EnumLabels", nullptr, FieldType::Text},
            {"EnumValues", nullptr, FieldType::Integer},
            {"Dimensions", nullptr, FieldType::Integer},
        },
    };
    return kind;
}

bool ToAsyncQueueBlock::getIsFixedPoint() const { return boolean(kIsFixedPoint); }
bool ToAsyncQueueBlock::getIsEnum() const { return boolean(kIsEnum); }
std::int32_t ToAsyncQueueBlock::getDataTypeId() const {
    return static_cast<std::int32_t>(integer(kDataTypeId));
}
std::int32_t ToAsyncQueueBlock::getDataTypeSize() const {
    return static_cast<std::int32_t>(integer(kDataTypeSize));
}
std::int32_t ToAsyncQueueBlock::getFxpNumericType() const {
    return static_cast<std::int32_t>(integer(kFxpNumericType));
}
std::uint32_t ToAsyncQueueBlock::getFxpSignedness() const {
    return static_cast<std::uint32_t>(integer(kFxpSignedness));
}
std::int32_t ToAsyncQueueBlock::getFxpWordLength() const {
    return static_cast<std::int32_t>(integer(kFxpWordLength));
}
std::int32_t ToAsyncQueueBlock::getFxpFractionLength() const {
    return static_cast<std::int32_t>(integer(kFxpFractionLength));
}
double ToAsyncQueueBlock::getFxpSlopeAdjFactor() const { return real(kFxpSlopeAdjFactor); }
std::int32_t ToAsyncQueueBlock::getFxpFixedExponent() const {
    return static_cast<std::int32_t>(integer(kFxpFixedExponent));
}
double ToAsyncQueueBlock::getFxpBias() const { return real(kFxpBias); }
ustring ToAsyncQueueBlock::getEnumClassName() const { return text(kEnumClassName); }
ustring ToAsyncQueueBlock::getEnumClassification() const { return text(kEnumClassification); }
bool ToAsyncQueueBlock::getIsComplex() const { return boolean(kIsComplex); }
bool ToAsyncQueueBlock::getIsDiscrete() const { return boolean(kIsDiscrete); }
bool ToAsyncQueueBlock::getIsVirtualBus() const { return boolean(kIsVirtualBus); }
bool ToAsyncQueueBlock::getIsNVBus() const { return boolean(kIsNVBus); }
bool ToAsyncQueueBlock::getIsVarDims() const { return boolean(kIsVarDims); }
ustring ToAsyncQueueBlock::getBlockPath() const { return text(kBlockPath); }
ustring ToAsyncQueueBlock::getBlockSID() const { return text(kBlockSID); }
std::int32_t ToAsyncQueueBlock::getPortNumber() const {
    return static_cast<std::int32_t>(integer(kPortNumber));
}
ustring ToAsyncQueueBlock::getSignalName() const { return text(kSignalName); }
ustring ToAsyncQueueBlock::getActSrcBlockPath() const { return text(kActSrcBlockPath); }
ustring ToAsyncQueueBlock::getActSrcBlockSID() const { return text(kActSrcBlockSID); }
std::int32_t ToAsyncQueueBlock::getActSrcPortNumber() const {
    return static_cast<std::int32_t>(integer(kActSrcPortNumber));
}
ustring ToAsyncQueueBlock::getActSrcDWorkName() const { return text(kActSrcDWorkName); }
std::int32_t ToAsyncQueueBlock::getActSrcStartElement() const {
    return static_cast<std::int32_t>(integer(kActSrcStartElement));
}
ustring ToAsyncQueueBlock::getSignalSourceUUID() const { return text(kSignalSourceUUID); }
std::int64_t ToAsyncQueueBlock::getSignalSourceUUIDasInteger() const {
    return integer(kSignalSourceUUIDasInteger);
}
std::uint32_t ToAsyncQueueBlock::getUniqueId() const {
    return static_cast<std::uint32_t>(integer(kUniqueId));
}
std::int32_t ToAsyncQueueBlock::getTid() const { return static_cast<std::int32_t>(integer(kTid)); }
std::int64_t ToAsyncQueueBlock::getNVBusOffset() const { return integer(kNVBusOffset); }
bool ToAsyncQueueBlock::getIsLiveStreaming() const { return boolean(kIsLiveStreaming); }
bool ToAsyncQueueBlock::getIsDeferredStreaming() const { return boolean(kIsDeferredStreaming); }
Sequence<ToAsyncQueueBlock> ToAsyncQueueBlock::getLeafElements() const {
    return Sequence<ToAsyncQueueBlock>(sequence(kLeafElementsList));
}
Sequence<StringListElement> ToAsyncQueueBlock::getEnumLabels() const {
    return Sequence<StringListElement>(sequence(kEnumLabelsList));
}
Sequence<IntegerArrayElement> ToAsyncQueueBlock::getEnumValues() const {
    return Sequence<IntegerArrayElement>(sequence(kEnumValuesList));
}
Sequence<IntegerArrayElement> ToAsyncQueueBlock::getDimensions() const {
    return Sequence<IntegerArrayElement>(sequence(kDimensionsList));
}

ToAsyncQueueBlockCreator::ToAsyncQueueBlockCreator(Repository& repository)
    : Creator(repository, ToAsyncQueueBlock::kind()) {}

void ToAsyncQueueBlockCreator::setIsFixedPoint(bool value) { setBoolean(kIsFixedPoint, value); }
void ToAsyncQueueBlockCreator::setIsEnum(bool value) { setBoolean(kIsEnum, value); }
void ToAsyncQueueBlockCreator::setDataTypeId(std::int32_t value) { setInteger(kDataTypeId, value); }
void ToAsyncQueueBlockCreator::setDataTypeSize(std::int32_t value) { setInteger(kDataTypeSize, value); }
void ToAsyncQueueBlockCreator::setFxpNumericType(std::int32_t value) { setInteger(kFxpNumericType, value); }
void ToAsyncQueueBlockCreator::setFxpSignedness(std::uint32_t value) { setInteger(kFxpSignedness, value); }
void ToAsyncQueueBlockCreator::setFxpWordLength(std::int32_t value) { setInteger(kFxpWordLength, value); }
void ToAsyncQueueBlockCreator::setFxpFractionLength(std::int32_t value) {
    setInteger(kFxpFractionLength, value);
}
void ToAsyncQueueBlockCreator::setFxpSlopeAdjFactor(double value) { setReal(kFxpSlopeAdjFactor, value); }
void ToAsyncQueueBlockCreator::setFxpFixedExponent(std::int32_t value) {
    setInteger(kFxpFixedExponent, value);
}
void ToAsyncQueueBlockCreator::setFxpBias(double value) { setReal(kFxpBias, value); }
void ToAsyncQueueBlockCreator::setEnumClassName(const ustring& value) { setText(kEnumClassName, value); }
void ToAsyncQueueBlockCreator::setEnumClassification(const ustring& value) {
    setText(kEnumClassification, value);
}
void ToAsyncQueueBlockCreator::setIsComplex(bool value) { setBoolean(kIsComplex, value); }
void ToAsyncQueueBlockCreator::setIsDiscrete(bool value) { setBoolean(kIsDiscrete, value); }
void ToAsyncQueueBlockCreator::setIsVirtualBus(bool value) { setBoolean(kIsVirtualBus, value); }
void ToAsyncQueueBlockCreator::setIsNVBus(bool value) { setBoolean(kIsNVBus, value); }
void ToAsyncQueueBlockCreator::setIsVarDims(bool value) { setBoolean(kIsVarDims, value); }
void ToAsyncQueueBlockCreator::setBlockPath(const ustring& value) { setText(kBlockPath, value); }
void ToAsyncQueueBlockCreator::setBlockSID(const ustring& value) { setText(kBlockSID, value); }
void ToAsyncQueueBlockCreator::setPortNumber(std::int32_t value) { setInteger(kPortNumber, value); }
void ToAsyncQueueBlockCreator::setSignalName(const ustring& value) { setText(kSignalName, value); }
void ToAsyncQueueBlockCreator::setActSrcBlockPath(const ustring& value) { setText(kActSrcBlockPath, value); }
void ToAsyncQueueBlockCreator::setActSrcBlockSID(const ustring& value) { setText(kActSrcBlockSID, value); }
void ToAsyncQueueBlockCreator::setActSrcPortNumber(std::int32_t value) {
    setInteger(kActSrcPortNumber, value);
}
void ToAsyncQueueBlockCreator::setActSrcDWorkName(const ustring& value) { setText(kActSrcDWorkName, value); }
void ToAsyncQueueBlockCreator::setActSrcStartElement(std::int32_t value) {
    setInteger(kActSrcStartElement, value);
}
void ToAsyncQueueBlockCreator::setSignalSourceUUID(const ustring& value) {
    setText(kSignalSourceUUID, value);
}
void ToAsyncQueueBlockCreator::setSignalSourceUUIDasInteger(std::int64_t value) {
    setInteger(kSignalSourceUUIDasInteger, value);
}
void ToAsyncQueueBlockCreator::setUniqueId(std::uint32_t value) { setInteger(kUniqueId, value); }
void ToAsyncQueueBlockCreator::setTid(std::int32_t value) { setInteger(kTid, value); }
void ToAsyncQueueBlockCreator::setNVBusOffset(std::int64_t value) { setInteger(kNVBusOffset, value); }
void ToAsyncQueueBlockCreator::setIsLiveStreaming(bool value) { setBoolean(kIsLiveStreaming, value); }
void ToAsyncQueueBlockCreator::setIsDeferredStreaming(bool value) { setBoolean(kIsDeferredStreaming, value); }

ToAsyncQueueBlock ToAsyncQueueBlockCreator::createToAsyncQueueBlock() {
    return objectAs<ToAsyncQueueBlock>(create());
}

} // namespace coder::descriptor
