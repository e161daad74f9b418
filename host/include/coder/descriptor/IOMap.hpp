#pragma once

#include "coder/descriptor/IntegerArrayElement.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a IOMap record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_IO_MAP(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    SEQUENCE(InportIndices, IntegerArrayElement)                      \
    SEQUENCE(OutportIndicies, IntegerArrayElement)

namespace coder::descriptor {

// A function prototype's overwritable input/output pairs: element i of
// InportIndices and of OutportIndicies form one pair.
class VELHOST_API IOMap : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_IO_MAP)
};

class VELHOST_API IOMapCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(IOMap, CODER_DESCRIPTOR_IO_MAP)
};

} // namespace coder::descriptor
