#pragma once

#include "coder/descriptor/GraphicalBlock.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a System record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_SYSTEM(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(Identifier, ustring)                                        \
    VALUE(Name, ustring)                                              \
    SEQUENCE(GraphicalCallSites, GraphicalBlock)

namespace coder::descriptor {

// One generated system and the blocks that call it.
class VELHOST_API System : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_SYSTEM)
};

class VELHOST_API SystemCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(System, CODER_DESCRIPTOR_SYSTEM)
};

} // namespace coder::descriptor
