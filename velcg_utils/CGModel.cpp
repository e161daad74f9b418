#include "velcg/CGModel.hpp"

#include <cassert>
#include <cstdint>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include <boost/thread/thread.hpp>

#include "OwnedList.hpp"
#include "coder/Messages.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Model.hpp"
#include "coder/descriptor/RepositoryHelper.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CoderDataGroup.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/Features.hpp"
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

[[noreturn]] void throwSubscript() { throw std::out_of_range("invalid vector<T> subscript"); }

std::filesystem::path codeDescriptorPath(const std::wstring& directory) {
    const std::filesystem::path name(CGModel::kCodeDescriptorFileName);
    if (directory.empty()) return name;
#if defined(_WIN32)
    return std::filesystem::path(directory) / name;
#else
    // File names are bytes here, UTF-8 by convention; converting through the
    // host keeps malformed text from becoming a mangled file name.
    return std::filesystem::path(vel::i18n::toUtf8(directory)) / name;
#endif
}

// Reports the failure of a background pass that nobody is left to raise it to.
void reportBackgroundFailure(const std::exception_ptr& error) noexcept {
    try {
        std::string cause;
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& e) {
            cause = e.what();
        } catch (...) {
            cause = "an exception that is not a std::exception";
        }
        reportDiagnostic(vel::diag::Diagnostic::withText(
            messages::Model::SerializationFailed,
            "A background serialization of the model into the code descriptor failed: " + cause));
    } catch (...) {
        // Out of memory while describing the failure: the destructor goes on.
    }
}

// A token naming one first pass: 128 random bits in 32 hexadecimal digits,
// a fixed length (see coder::Repository::setUnfinishedRun).
std::string newRunToken() {
    std::random_device random;
    std::string token;
    for (int word = 0; word < 4; ++word) {
        std::uint32_t bits = random();
        for (int digit = 0; digit < 8; ++digit, bits >>= 4) token += "0123456789abcdef"[bits & 0xf];
    }
    return token;
}

// Raises DescriptorOfAnotherRun for a second pass of `model` (of run `own`)
// that found the token `stored` in repository.
[[noreturn]] void throwDescriptorOfAnotherRun(const std::wstring& model, const std::string& own,
                                              coder::Repository& repository, const std::string& stored) {
    std::string held = "no model";
    try {
        held = "model '" +
               vel::i18n::toUtf8(coder::descriptor::RepositoryHelper::getModel(repository).getModelName()) +
               "' " + (stored.empty() ? "with no second pass outstanding" : "of run " + stored);
    } catch (const vel::diag::Exception& e) {
        if (e.identifier() != coder::messages::descriptor::NoModel) throw;
    }
    vel::diag::throwError(messages::Model::DescriptorOfAnotherRun,
                          {vel::i18n::toUtf8(model), own.empty() ? "no first pass run" : "run " + own,
                           repository.getPath().u8string(), held});
}

} // namespace

CGModel::CGModel()
    : blockHierarchyMap_(std::make_unique<BlockHierarchyMap>()), fpcIOMap_(std::make_unique<FPCIOMap>()) {}

// Every step is noexcept, so each runs whatever the ones before it met:
// waiting and reporting catch their own failures, and element destructors
// cannot throw (see detail::deleteAll). The hierarchy map, a member, goes
// after the lists.
CGModel::~CGModel() {
    // Scripts on other threads lose every object reached through the model
    // before any of them goes.
    endScriptAccess();
    // A background pass may still be reading the elements deleted below.
    waitForSerialization();
    if (serializationError_) reportBackgroundFailure(std::exchange(serializationError_, nullptr));
    detail::deleteAll(systems_);
    detail::deleteAll(velCGTypes_);
    detail::deleteAll(varGroups_);
    detail::deleteAll(velTypes_);
    detail::deleteAll(externalInputs_);
    detail::deleteAll(taqBlocks_);
    detail::deleteAll(modelParameters_);
    detail::deleteAll(globalBlockOutputs_);
    detail::deleteAll(constantBlockOutputs_);
    detail::deleteAll(externalBlockOutputs_);
    detail::deleteAll(dWorks_);
    detail::deleteAll(externalInputInterfaces_);
    detail::deleteAll(externalOutputInterfaces_);
    detail::deleteAll(coderDataGroups_);
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
    if (system) system->setCGModel(this);
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
        vel::diag::throwErrorText(messages::Model::DuplicateName,
                                  "The model already has a coder data group named '" + group->name() + "'.");
    const std::size_t position = coderDataGroups_.size();
    // Make room first: once the name is recorded, the append must not fail.
    coderDataGroups_.reserve(position + 1);
    coderDataGroupIndex_.emplace(group->name(), position);
    group->setGroupIndex(static_cast<int>(position));
    assert(coderDataGroups_.capacity() > position && "the append after recording the name cannot reallocate");
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
    detail::deleteAll(modelParameters_);
    modelParameters_.swap(replacement);
}

bool CGModel::getIsCompactFilePackaging() const {
    return filePackagingFormat_ == FilePackagingFormat::Compact ||
           filePackagingFormat_ == FilePackagingFormat::CompactWithDataFile;
}

void CGModel::serializeModelImpl(const std::wstring& directory) {
    using vel::i18n::toUString;
    if (VELFEAT_VelCGDirectEmitSerialize.value() < 1) return;
    if (VELFEAT_VelCGDirectEmitSerialize.value() == 3) recordTAQActualSources();
    // A new token also when this pass fails: the second pass must not add to
    // what an earlier first pass stored.
    serializationRun_ = newRunToken();

    // Declared in the order of use, so that a failure destroys them in
    // reverse and the transaction rolls back before the file closes.
    coder::Repository repository(codeDescriptorPath(directory));
    coder::Transaction transaction(repository);
    coder::descriptor::ModelCreator creator(repository);
    creator.setModelName(toUString(getName()));
    creator.setKordelVersion(toUString(getKordelVersion()));
    creator.setSharedCodeManagerPath(toUString(sharedCodeManagerPath_));
    coder::descriptor::Model model = creator.createModel();
    model.setBlockHierarchyMap(blockHierarchyMap_->serialize(repository));
    if (VELFEAT_VelCGDirectEmitSerialize.value() >= 4) {
        const auto systems = model.getSystems();
        for (const System* system : systems_) systems.append(system->serialize(repository));
        const auto inputs = model.getExternalInputs();
        for (const ExternalInput* input : externalInputs_) inputs.append(input->serialize(repository));
    }
    const auto taqBlocks = model.getTAQBlocks();
    for (const ToAsyncQueueBlock* block : taqBlocks_) taqBlocks.append(block->serializeAsync(repository));
    model.setFPCInfo(fpcIOMap_->serialize(repository));
    repository.setUnfinishedRun(serializationRun_);
    transaction.commit();
    model.release();
}

void CGModel::serializeModelAfterScrivImpl(const std::wstring& directory) {
    if (VELFEAT_VelCGDirectEmitSerialize.value() < 1) return;

    coder::Repository repository(codeDescriptorPath(directory));
    coder::Transaction transaction(repository);
    const std::string stored = repository.getUnfinishedRun();
    if (serializationRun_.empty() || stored != serializationRun_)
        throwDescriptorOfAnotherRun(getName(), serializationRun_, repository, stored);
    coder::descriptor::Model model = coder::descriptor::RepositoryHelper::getModel(repository);
    const auto groups = model.getCoderGroups();
    for (const CoderDataGroup* group : coderDataGroups_) groups.append(group->serialize(repository));
    repository.setUnfinishedRun({});
    transaction.commit();
    model.release();
}

void CGModel::recordTAQActualSources() {
    for (const ToAsyncQueueBlock* block : taqBlocks_) {
        taqActualSourcePaths_.insert(block->getActSrcBlockPath());
        if (block->getIsVirtualBus())
            for (const ToAsyncQueueBlock* leaf : block->getLeafElements())
                taqActualSourcePaths_.insert(leaf->getActSrcBlockPath());
    }
}

} // namespace VelCG
