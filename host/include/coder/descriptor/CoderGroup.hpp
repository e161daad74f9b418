#pragma once

#include <cstdint>

#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a CoderGroup record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_CODER_GROUP(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(Name, ustring)                                                   \
    VALUE(RootTypeName, ustring)                                           \
    VALUE(StructureTypeNameRule, ustring)                                  \
    VALUE(StructureInstanceNameRule, ustring)                              \
    VALUE(SelfStructureTypeNameRule, ustring)                              \
    VALUE(StructureReferenceNameRule, ustring)                             \
    VALUE(SelfStructureReferenceNameRule, ustring)                         \
    VALUE(StructureArgumentNameRule, ustring)                              \
    VALUE(SelfStructureArgumentNameRule, ustring)                          \
    VALUE(HeaderFileRule, ustring)                                         \
    VALUE(SelfStructureInstanceNameRule, ustring)                          \
    VALUE(GroupSize, int32_t)                                              \
    VALUE(AsStructure, ustring)

namespace coder::descriptor {

// A coder data group: its name, root type name, naming rules, group size
// and as-structure string.
class VELHOST_API CoderGroup : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_CODER_GROUP)
};

class VELHOST_API CoderGroupCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(CoderGroup, CODER_DESCRIPTOR_CODER_GROUP)
};

} // namespace coder::descriptor
