#include "velcg/ToAsyncQueueBlock.hpp"

#include <algorithm>

#include "OwnedList.hpp"
#include "coder/descriptor/ToAsyncQueueBlock.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

ToAsyncQueueBlock::ToAsyncQueueBlock(GraphicalBlockIF* impl) : GraphicalBlock(impl) {}

ToAsyncQueueBlock::~ToAsyncQueueBlock() {
    endScriptAccess();
    detail::deleteAll(leafElements_);
}

const char* ToAsyncQueueBlock::getFullyQualifiedKorbTypeName() const { return "VelCG.ToAsyncQueueBlock"; }

bool ToAsyncQueueBlock::holds(const ToAsyncQueueBlock* record) const {
    for (const ToAsyncQueueBlock* leaf : leafElements_)
        if (leaf == record || leaf->holds(record)) return true;
    return false;
}

void ToAsyncQueueBlock::checkLeaf(const ToAsyncQueueBlock* leaf) const {
    if (!leaf) throwNullArgument("A leaf element");
    // A record that is, or holds, this one would make the bus own itself and
    // be deleted twice.
    if (leaf == this || leaf->holds(this))
        throwInvalidOwnership(
            "An async-queue block cannot be a leaf element of itself or of its own leaves.");
}

void ToAsyncQueueBlock::addLeafElement(ToAsyncQueueBlock* leaf) {
    checkLeaf(leaf);
    if (std::find(leafElements_.begin(), leafElements_.end(), leaf) != leafElements_.end())
        throwInvalidOwnership("The async-queue block already owns this leaf element.");
    leafElements_.push_back(leaf);
}

void ToAsyncQueueBlock::setLeafElements(const std::vector<ToAsyncQueueBlock*>& leaves) {
    // Current leaves may be kept; those left out are deleted.
    detail::checkReplacement(leafElements_, leaves, "A leaf element", true);
    for (const ToAsyncQueueBlock* leaf : leaves) checkLeaf(leaf);
    detail::replaceOwned(leafElements_, leaves);
}

coder::descriptor::ToAsyncQueueBlock ToAsyncQueueBlock::serializeAsync(coder::Repository& repository) const {
    using vel::i18n::toUString;
    coder::descriptor::ToAsyncQueueBlockCreator creator(repository);
    creator.setIsFixedPoint(isFixedPoint_);
    creator.setIsEnum(isEnum_);
    creator.setDataTypeId(dataTypeId_);
    creator.setDataTypeSize(dataTypeSize_);
    creator.setFxpNumericType(fxpNumericType_);
    creator.setFxpSignedness(fxpSignedness_);
    creator.setFxpWordLength(fxpWordLength_);
    creator.setFxpFractionLength(fxpFractionLength_);
    creator.setFxpSlopeAdjFactor(fxpSlopeAdjFactor_);
    creator.setFxpFixedExponent(fxpFixedExponent_);
    creator.setFxpBias(fxpBias_);
    creator.setEnumClassName(toUString(enumClassName_));
    creator.setEnumClassification(toUString(enumClassification_));
    creator.setIsComplex(isComplex_);
    creator.setIsDiscrete(isDiscrete_);
    creator.setIsVirtualBus(isVirtualBus_);
    creator.setIsNVBus(isNVBus_);
    creator.setIsVarDims(isVarDims_);
    creator.setBlockPath(toUString(blockPath_));
    creator.setBlockSID(toUString(blockSID_));
    creator.setPortNumber(portNumber_);
    creator.setSignalName(toUString(signalName_));
    creator.setActSrcBlockPath(toUString(actSrcBlockPath_));
    creator.setActSrcBlockSID(toUString(actSrcBlockSID_));
    creator.setActSrcPortNumber(actSrcPortNumber_);
    creator.setActSrcDWorkName(toUString(actSrcDWorkName_));
    creator.setActSrcStartElement(actSrcStartElement_);
    creator.setSignalSourceUUID(toUString(signalSourceUUID_));
    creator.setSignalSourceUUIDasInteger(signalSourceUUIDasInteger_);
    creator.setUniqueId(uniqueId_);
    creator.setTid(tid_);
    creator.setNVBusOffset(nvBusOffset_);
    creator.setIsLiveStreaming(isLiveStreaming_);
    creator.setIsDeferredStreaming(isDeferredStreaming_);
    coder::descriptor::ToAsyncQueueBlock record = creator.createToAsyncQueueBlock();

    // Leaves cannot form a cycle (addLeafElement and setLeafElements refuse
    // one), so the recursion ends.
    const auto leaves = record.getLeafElements();
    for (const ToAsyncQueueBlock* leaf : leafElements_) leaves.append(leaf->serializeAsync(repository));
    const auto labels = record.getEnumLabels();
    for (const std::wstring& label : enumLabels_)
        labels.append(coder::descriptor::StringListElement(toUString(label)));
    const auto values = record.getEnumValues();
    for (int value : enumValues_) values.append(coder::descriptor::IntegerArrayElement(value));
    const auto dimensions = record.getDimensions();
    for (int dimension : dimensions_) dimensions.append(coder::descriptor::IntegerArrayElement(dimension));
    return record;
}

} // namespace VelCG
