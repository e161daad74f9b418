#pragma once

#include "coder/descriptor/IntegerArrayElement.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a State record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_STATE(VALUE, OPTIONAL, REFERENCE, SEQUENCE) SEQUENCE(Dimensions, IntegerArrayElement)

namespace coder::descriptor {

// A continuous state or derivative of a block.
class VELHOST_API State : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_STATE)
};

class VELHOST_API StateCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(State, CODER_DESCRIPTOR_STATE)
};

} // namespace coder::descriptor
