#pragma once

#include <cstdint>

#include "coder/descriptor/GraphicalSystem.hpp"
#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// The graphical subsystems of a model, root first.
class VELHOST_API BlockHierarchyMap : public Object {
public:
    static const RecordKind& kind();

    Sequence<GraphicalSystem> getGraphicalSystems() const;
};

class VELHOST_API BlockHierarchyMapCreator : public Creator {
public:
    explicit BlockHierarchyMapCreator(Repository& repository);

    BlockHierarchyMap createBlockHierarchyMap();
};

} // namespace coder::descriptor
