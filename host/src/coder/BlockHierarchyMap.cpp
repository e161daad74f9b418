#include "coder/descriptor/BlockHierarchyMap.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum List : std::size_t { kGraphicalSystemsList };
} // namespace

const RecordKind& BlockHierarchyMap::kind() {
    static const RecordKind kind{
        "BlockHierarchyMap",
        {},
        {
            {"GraphicalSystems", &GraphicalSystem::kind, FieldType::Reference},
        },
    };
    return kind;
}

Sequence<GraphicalSystem> BlockHierarchyMap::getGraphicalSystems() const {
    return Sequence<GraphicalSystem>(sequence(kGraphicalSystemsList));
}

BlockHierarchyMapCreator::BlockHierarchyMapCreator(Repository& repository)
    : Creator(repository, BlockHierarchyMap::kind()) {}

BlockHierarchyMap BlockHierarchyMapCreator::createBlockHierarchyMap() {
    return objectAs<BlockHierarchyMap>(create());
}

} // namespace coder::descriptor
