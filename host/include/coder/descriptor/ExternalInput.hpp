#pragma once

#include <cstdint>

#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a ExternalInput record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_EXTERNAL_INPUT(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(CGTypeIndex, int32_t)                                               \
    VALUE(StorageClass, ustring)                                              \
    VALUE(RequiresGlobalAccess, bool)                                         \
    VALUE(Identifier, ustring)                                                \
    VALUE(VarGroupIndex, int32_t)                                             \
    VALUE(VarGroupMemberIndex, int32_t)                                       \
    VALUE(HasVarDims, bool)                                                   \
    VALUE(CanonicalDimSizeDWorkIndex, int32_t)                                \
    VALUE(HasCanonicalDimSizeDWorkIndex, bool)                                \
    VALUE(SizeVarGroupIndex, int32_t)                                         \
    VALUE(SizeVarGroupMemberIndex, int32_t)                                   \
    VALUE(DimSizeDWork, int32_t)                                              \
    VALUE(Padding, int32_t)

namespace coder::descriptor {

// A root-level input of the model as generated code sees it.
class VELHOST_API ExternalInput : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_EXTERNAL_INPUT)
};

class VELHOST_API ExternalInputCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(ExternalInput, CODER_DESCRIPTOR_EXTERNAL_INPUT)
};

} // namespace coder::descriptor
