#pragma once

#include "coder/descriptor/IntegerArrayElement.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a Region record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_REGION(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(GroundLabel, ustring)                                       \
    VALUE(Source, ustring)                                            \
    SEQUENCE(Dimensions, IntegerArrayElement)

namespace coder::descriptor {

// One contiguous piece of the signal at a port.
class VELHOST_API Region : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_REGION)
};

class VELHOST_API RegionCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(Region, CODER_DESCRIPTOR_REGION)
};

} // namespace coder::descriptor
