#include "coder/descriptor/Model.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t { kModelName, kKordelVersion, kSharedCodeManagerPath, kBlockHierarchyMap, kFPCInfo };
enum List : std::size_t { kSystemsList, kExternalInputsList, kTAQBlocksList, kCoderGroupsList };
} // namespace

const RecordKind& Model::kind() {
    static const RecordKind kind{
        "Model",
        {
            {"ModelName", FieldType::Text, false, nullptr, 0, 0},
            {"KordelVersion", FieldType::Text, false, nullptr, 0, 0},
            {"SharedCodeManagerPath", FieldType::Text, false, nullptr, 0, 0},
            {"BlockHierarchyMap", FieldType::Reference, true, &BlockHierarchyMap::kind, 0, 0},
            {"FPCInfo", FieldType::Reference, true, &IOMap::kind, 0, 0},
        },
        {
            {"Systems", &System::kind, FieldType::Reference},
            {"ExternalInputs", &ExternalInput::kind, FieldType::Reference},
            {"TAQBlocks", &ToAsyncQueueBlock::kind, FieldType::Reference},
            {"CoderGroups", &CoderGroup::kind, FieldType::Reference},
        },
    };
    return kind;
}

ustring Model::getModelName() const { return text(kModelName); }
ustring Model::getKordelVersion() const { return text(kKordelVersion); }
ustring Model::getSharedCodeManagerPath() const { return text(kSharedCodeManagerPath); }
BlockHierarchyMap Model::getBlockHierarchyMap() const {
    return objectAs<BlockHierarchyMap>(reference(kBlockHierarchyMap));
}
void Model::setBlockHierarchyMap(const BlockHierarchyMap& value) { setReference(kBlockHierarchyMap, value); }
IOMap Model::getFPCInfo() const { return objectAs<IOMap>(reference(kFPCInfo)); }
void Model::setFPCInfo(const IOMap& value) { setReference(kFPCInfo, value); }
Sequence<System> Model::getSystems() const { return Sequence<System>(sequence(kSystemsList)); }
Sequence<ExternalInput> Model::getExternalInputs() const {
    return Sequence<ExternalInput>(sequence(kExternalInputsList));
}
Sequence<ToAsyncQueueBlock> Model::getTAQBlocks() const {
    return Sequence<ToAsyncQueueBlock>(sequence(kTAQBlocksList));
}
Sequence<CoderGroup> Model::getCoderGroups() const {
    return Sequence<CoderGroup>(sequence(kCoderGroupsList));
}

ModelCreator::ModelCreator(Repository& repository) : Creator(repository, Model::kind()) {}

void ModelCreator::setModelName(const ustring& value) { setText(kModelName, value); }
void ModelCreator::setKordelVersion(const ustring& value) { setText(kKordelVersion, value); }
void ModelCreator::setSharedCodeManagerPath(const ustring& value) { setText(kSharedCodeManagerPath, value); }

Model ModelCreator::createModel() {
    // A store holds one model description: rebuilding in the same build
    // directory replaces the earlier one instead of adding a second.
    removeAllRecords();
    return objectAs<Model>(create());
}

} // namespace coder::descriptor
