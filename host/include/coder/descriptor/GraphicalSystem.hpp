#pragma once

#include "coder/descriptor/GraphicalBlock.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a GraphicalSystem record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_GRAPHICAL_SYSTEM(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(Name, ustring)                                                        \
    VALUE(GraphicalName, ustring)                                               \
    OPTIONAL(SubsystemType, ustring)                                            \
    VALUE(MaskType, ustring)                                                    \
    SEQUENCE(GraphicalBlocks, GraphicalBlock)

namespace coder::descriptor {

// One graphical subsystem and its blocks. SubsystemType is absent when the
// subsystem's type has no name.
class VELHOST_API GraphicalSystem : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_GRAPHICAL_SYSTEM)
};

class VELHOST_API GraphicalSystemCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(GraphicalSystem, CODER_DESCRIPTOR_GRAPHICAL_SYSTEM)
};

} // namespace coder::descriptor
