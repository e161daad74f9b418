#pragma once

#include "coder/descriptor/RecordMembers.hpp"
#include "coder/descriptor/StringListElement.hpp"

// The fields and sequences of a ModelParameter record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_MODEL_PARAMETER(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(Name, ustring)                                                       \
    VALUE(OriginalName, ustring)                                               \
    VALUE(Alias, bool)                                                         \
    VALUE(Tunable, bool)                                                       \
    VALUE(WorkspaceVariable, bool)                                             \
    VALUE(WorkspaceVariableName, ustring)                                      \
    OPTIONAL(GraphicalSourceSID, ustring)                                      \
    SEQUENCE(GraphicalReferencesSID, StringListElement)

namespace coder::descriptor {

// A model-level parameter. GraphicalSourceSID is absent when the parameter
// has no graphical source.
class VELHOST_API ModelParameter : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_MODEL_PARAMETER)
};

class VELHOST_API ModelParameterCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(ModelParameter, CODER_DESCRIPTOR_MODEL_PARAMETER)
};

} // namespace coder::descriptor
