#pragma once

#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a DataInterface record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_DATA_INTERFACE(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(Identifier, ustring)                                                \
    VALUE(Implementation, ustring)                                            \
    VALUE(Owner, ustring)                                                     \
    VALUE(TypeName, ustring)                                                  \
    VALUE(GraphicalName, ustring)

namespace CG {
class DataInterface;
}

namespace coder::descriptor {

// A data-interface container: where a piece of model data lives in
// generated code, as the code generator core describes it.
class VELHOST_API DataInterface : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_DATA_INTERFACE)
};

class VELHOST_API DataInterfaceCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(DataInterface, CODER_DESCRIPTOR_DATA_INTERFACE)

    // Sets every field from the code generator core's description.
    void setFrom(const CG::DataInterface& dataInterface);
};

} // namespace coder::descriptor
