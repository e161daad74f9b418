#include "velcg/CGModel.hpp"

#include <stdexcept>

#include "OwnedList.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CoderDataGroup.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/System.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

namespace VelCG {

namespace {

template <class T>
T* elementOrNull(const std::vector<T*>& list, unsigned int index) {
    return index < list.size() ? list[index] : nullptr;
}

// Deletes the elements of an owning list. A throwing destructor must not stop
// the destruction of the rest of the model.
template <class T>
void deleteAll(std::vector<T*>& list) noexcept {
    for (T* element : list) {
        try {
            delete element;
        } catch (...) {
        }
    }
    list.clear();
}

[[noreturn]] void throwSubscript() { throw std::out_of_range("invalid vector<T> subscript"); }

} // namespace

CGModel::CGModel() : blockHierarchyMap_(new BlockHierarchyMap()), fpcIOMap_(std::make_unique<FPCIOMap>()) {}

CGModel::~CGModel() {
    deleteAll(systems_);
    deleteAll(velCGTypes_);
    deleteAll(varGroups_);
    deleteAll(velTypes_);
    deleteAll(externalInputs_);
    deleteAll(taqBlocks_);
    deleteAll(modelParameters_);
    deleteAll(globalBlockOutputs_);
    deleteAll(constantBlockOutputs_);
    deleteAll(externalBlockOutputs_);
    deleteAll(dWorks_);
    deleteAll(externalInputInterfaces_);
    deleteAll(externalOutputInterfaces_);
    deleteAll(coderDataGroups_);
    try {
        delete blockHierarchyMap_;
    } catch (...) {
    }
}

const char* CGModel::getFullyQualifiedKorbTypeName() const { return "VelCG.CGModel"; }

std::wstring CGModel::getName() const { return {}; }
std::wstring CGModel::getVersion() const { return {}; }
std::wstring CGModel::getKordelCoderVersion() const { return {}; }
std::wstring CGModel::getKordelVersion() const { return {}; }
void CGModel::initializeCompiledInfo() {}
void CGModel::initializeCodegenInfo() {}
int CGModel::getOverwritableOutputPort(int inputPort) const {
    return fpcIOMap_->getOverwritableOutputPort(inputPort);
}
std::string CGModel::getHeaderFileForDataType(const CG::Type&) const { return {}; }
void CGModel::setOverwritableIOPair(int inputPort, int outputPort) {
    fpcIOMap_->setOverwritableIOPair(inputPort, outputPort);
}
void CGModel::addCoderDataGroup(CoderDataGroup*) {}
bool CGModel::shouldSuppressSelf() const { return false; }
bool CGModel::useGlobalSelfInstanceForChildModel(vel::i18n::ustring) const { return false; }

bool CGModel::isTAQBlockActualSrc(const std::wstring& blockPath) const {
    return taqActualSourcePaths_.count(blockPath) != 0;
}

void CGModel::addSystem(std::unique_ptr<System> system) {
    detail::appendOwned(systems_, std::move(system), "A system");
}

void CGModel::addVelCGType(std::unique_ptr<VelCGType> type) {
    if (type) type->setCGModel(this);
    detail::appendOwned(velCGTypes_, std::move(type), "A code-generation type");
}

void CGModel::addVelType(std::unique_ptr<VelType> type) {
    if (type) type->setCGModel(this);
    detail::appendOwned(velTypes_, std::move(type), "A data type");
}

void CGModel::addVarGroup(std::unique_ptr<VarGroup> group) {
    detail::appendOwned(varGroups_, std::move(group), "A variable group");
}

void CGModel::addExternalInput(std::unique_ptr<ExternalInput> input) {
    if (input) input->setCGModel(this);
    detail::appendOwned(externalInputs_, std::move(input), "An external input");
}

void CGModel::addModelParameter(std::unique_ptr<ModelParameter> parameter) {
    detail::appendOwned(modelParameters_, std::move(parameter), "A model parameter");
}

void CGModel::addTAQBlock(std::unique_ptr<ToAsyncQueueBlock> block) {
    detail::appendOwned(taqBlocks_, std::move(block), "An async-queue block");
}

void CGModel::addGlobalBlockOutput(std::unique_ptr<DataInterfaceRecord> record) {
    detail::appendOwned(globalBlockOutputs_, std::move(record), "A data-interface record");
}

void CGModel::addConstantBlockOutput(std::unique_ptr<DataInterfaceRecord> record) {
    detail::appendOwned(constantBlockOutputs_, std::move(record), "A data-interface record");
}

void CGModel::addExternalBlockOutput(std::unique_ptr<DataInterfaceRecord> record) {
    detail::appendOwned(externalBlockOutputs_, std::move(record), "A data-interface record");
}

void CGModel::addDWork(std::unique_ptr<DataInterfaceRecord> record) {
    detail::appendOwned(dWorks_, std::move(record), "A data-interface record");
}

void CGModel::addExternalInputDataInterface(std::unique_ptr<DataInterfaceRecord> record) {
    detail::appendOwned(externalInputInterfaces_, std::move(record), "A data-interface record");
}

void CGModel::addExternalOutputDataInterface(std::unique_ptr<DataInterfaceRecord> record) {
    detail::appendOwned(externalOutputInterfaces_, std::move(record), "A data-interface record");
}

std::size_t CGModel::appendCoderDataGroup(std::unique_ptr<CoderDataGroup> group) {
    if (!group) throwNullArgument("A coder data group");
    if (coderDataGroupIndex_.count(group->name()))
        vel::diag::throwErrorText(kDuplicateNameId,
                                  "The model already has a coder data group named '" + group->name() + "'.");
    const std::size_t position = coderDataGroups_.size();
    // Make room first: once the name is recorded, the append must not fail.
    coderDataGroups_.reserve(position + 1);
    coderDataGroupIndex_.emplace(group->name(), position);
    group->setGroupIndex(static_cast<int>(position));
    coderDataGroups_.push_back(group.release());
    return position;
}

void CGModel::addFunctionForSystem(const std::string& functionName, System* system) {
    functionSystemIndex_[functionName] = system;
}

System* CGModel::getSystemForFunction(const std::string& functionName) const {
    auto it = functionSystemIndex_.find(functionName);
    return it == functionSystemIndex_.end() ? nullptr : it->second;
}

const VelCGType* CGModel::getVelCGType(unsigned int index) const { return elementOrNull(velCGTypes_, index); }
const VarGroup* CGModel::getVarGroup(unsigned int index) const { return elementOrNull(varGroups_, index); }
const ModelParameter* CGModel::getModelParameter(unsigned int index) const {
    return elementOrNull(modelParameters_, index);
}
const ExternalInput* CGModel::getExternalInput(unsigned int index) const {
    return elementOrNull(externalInputs_, index);
}
ExternalInput* CGModel::getExternalInput(unsigned int index) { return elementOrNull(externalInputs_, index); }

const DataInterfaceRecord* CGModel::getDataInterfaceRecordByIndex(
    unsigned int index, const std::vector<DataInterfaceRecord*>& list) {
    return elementOrNull(list, index);
}

const DataInterfaceRecord* CGModel::getExternalInputDataInterface(unsigned int index) const {
    return getDataInterfaceRecordByIndex(index, externalInputInterfaces_);
}
const DataInterfaceRecord* CGModel::getExternalOutputDataInterface(unsigned int index) const {
    return getDataInterfaceRecordByIndex(index, externalOutputInterfaces_);
}
const DataInterfaceRecord* CGModel::getGlobalBlockOutput(unsigned int index) const {
    return getDataInterfaceRecordByIndex(index, globalBlockOutputs_);
}
DataInterfaceRecord* CGModel::getGlobalBlockOutput(unsigned int index) {
    return const_cast<DataInterfaceRecord*>(getDataInterfaceRecordByIndex(index, globalBlockOutputs_));
}
const DataInterfaceRecord* CGModel::getConstantBlockOutput(unsigned int index) const {
    return getDataInterfaceRecordByIndex(index, constantBlockOutputs_);
}
DataInterfaceRecord* CGModel::getConstantBlockOutput(unsigned int index) {
    return const_cast<DataInterfaceRecord*>(getDataInterfaceRecordByIndex(index, constantBlockOutputs_));
}
const DataInterfaceRecord* CGModel::getExternalBlockOutput(unsigned int index) const {
    return getDataInterfaceRecordByIndex(index, externalBlockOutputs_);
}
DataInterfaceRecord* CGModel::getExternalBlockOutput(unsigned int index) {
    return const_cast<DataInterfaceRecord*>(getDataInterfaceRecordByIndex(index, externalBlockOutputs_));
}
const DataInterfaceRecord* CGModel::getDWork(unsigned int index) const {
    return getDataInterfaceRecordByIndex(index, dWorks_);
}
DataInterfaceRecord* CGModel::getDWork(unsigned int index) {
    return const_cast<DataInterfaceRecord*>(getDataInterfaceRecordByIndex(index, dWorks_));
}

const CoderDataGroup* CGModel::getCoderDataGroup(std::size_t index) const {
    if (index >= coderDataGroups_.size()) throwSubscript();
    return coderDataGroups_[index];
}

CoderDataGroup* CGModel::getCoderDataGroup(std::size_t index) {
    if (index >= coderDataGroups_.size()) throwSubscript();
    return coderDataGroups_[index];
}

const CoderDataGroup* CGModel::getCoderDataGroup(const std::string& name) const {
    auto it = coderDataGroupIndex_.find(name);
    return it == coderDataGroupIndex_.end() ? nullptr : getCoderDataGroup(it->second);
}

CoderDataGroup* CGModel::getCoderDataGroup(const std::string& name) {
    auto it = coderDataGroupIndex_.find(name);
    return it == coderDataGroupIndex_.end() ? nullptr : getCoderDataGroup(it->second);
}

void CGModel::setSystems(const std::vector<System*>&) {}
void CGModel::setVelCGTypes(const std::vector<VelCGType*>&) {}
void CGModel::setVelTypes(const std::vector<VelType*>&) {}
void CGModel::setVarGroups(const std::vector<VarGroup*>&) {}
void CGModel::setTAQBlocks(const std::vector<ToAsyncQueueBlock*>&) {}
void CGModel::setExternalInputs(const std::vector<ExternalInput*>&) {}
void CGModel::setBlockHierarchyMap(BlockHierarchyMap*) {}

void CGModel::setModelParameters(const std::vector<ModelParameter*>& parameters) {
    detail::checkReplacement(modelParameters_, parameters, "A model parameter");
    std::vector<ModelParameter*> replacement(parameters);
    deleteAll(modelParameters_);
    modelParameters_.swap(replacement);
}

bool CGModel::getIsCompactFilePackaging() const {
    return filePackagingFormat_ == FilePackagingFormat::Compact ||
           filePackagingFormat_ == FilePackagingFormat::CompactWithDataFile;
}

} // namespace VelCG
