#include "coder/descriptor/GraphicalSystem.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t { kName, kGraphicalName, kSubsystemType, kMaskType };
enum List : std::size_t { kGraphicalBlocksList };
} // namespace

const RecordKind& GraphicalSystem::kind() {
    static const RecordKind kind{
        "GraphicalSystem",
        {
            {"Name", FieldType::Text, false, nullptr, 0, 0},
            {"GraphicalName", FieldType::Text, false, nullptr, 0, 0},
            {"SubsystemType", FieldType::Text, true, nullptr, 0, 0},
            {"MaskType", FieldType::Text, false, nullptr, 0, 0},
        },
        {
            {"GraphicalBlocks", &GraphicalBlock::kind, FieldType::Reference},
        },
    };
    return kind;
}

ustring GraphicalSystem::getName() const { return text(kName); }
ustring GraphicalSystem::getGraphicalName() const { return text(kGraphicalName); }
bool GraphicalSystem::hasSubsystemType() const { return has(kSubsystemType); }
ustring GraphicalSystem::getSubsystemType() const { return text(kSubsystemType); }
ustring GraphicalSystem::getMaskType() const { return text(kMaskType); }
Sequence<GraphicalBlock> GraphicalSystem::getGraphicalBlocks() const {
    return Sequence<GraphicalBlock>(sequence(kGraphicalBlocksList));
}

GraphicalSystemCreator::GraphicalSystemCreator(Repository& repository)
    : Creator(repository, GraphicalSystem::kind()) {}

void GraphicalSystemCreator::setName(const ustring& value) { setText(kName, value); }
void GraphicalSystemCreator::setGraphicalName(const ustring& value) { setText(kGraphicalName, value); }
void GraphicalSystemCreator::setSubsystemType(const ustring& value) { setText(kSubsystemType, value); }
void GraphicalSystemCreator::setMaskType(const ustring& value) { setText(kMaskType, value); }

GraphicalSystem GraphicalSystemCreator::createGraphicalSystem() {
    return objectAs<GraphicalSystem>(create());
}

} // namespace coder::descriptor
