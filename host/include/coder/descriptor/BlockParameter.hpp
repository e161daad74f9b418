#pragma once

#include "coder/descriptor/ModelParameter.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a BlockParameter record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_BLOCK_PARAMETER(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(Name, ustring)                                                       \
    SEQUENCE(ModelParameters, ModelParameter)

namespace coder::descriptor {

// A parameter of a block and the model parameters it refers to.
class VELHOST_API BlockParameter : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_BLOCK_PARAMETER)
};

class VELHOST_API BlockParameterCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(BlockParameter, CODER_DESCRIPTOR_BLOCK_PARAMETER)
};

} // namespace coder::descriptor
