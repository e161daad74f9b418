#pragma once

#include "coder/descriptor/GraphicalSystem.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a BlockHierarchyMap record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_BLOCK_HIERARCHY_MAP(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    SEQUENCE(GraphicalSystems, GraphicalSystem)

namespace coder::descriptor {

// The graphical subsystems of a model, root first.
class VELHOST_API BlockHierarchyMap : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_BLOCK_HIERARCHY_MAP)
};

class VELHOST_API BlockHierarchyMapCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(BlockHierarchyMap, CODER_DESCRIPTOR_BLOCK_HIERARCHY_MAP)
};

} // namespace coder::descriptor
