#pragma once

#include "coder/descriptor/DataInterface.hpp"
#include "coder/descriptor/RecordMembers.hpp"

// The fields and sequences of a Port record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_PORT(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(GraphicalName, ustring)                                   \
    VALUE(SignalLabel, ustring)                                     \
    VALUE(Connected, bool)                                          \
    VALUE(TestPoint, bool)                                          \
    REFERENCE(GraphicalSource, Port)                                \
    SEQUENCE(DataInterfaces, DataInterface)

namespace coder::descriptor {

// One port of a block. GraphicalSource is the port that feeds this one, a
// port record of its own, so that chains of sources nest.
class VELHOST_API Port : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_PORT)
};

class VELHOST_API PortCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(Port, CODER_DESCRIPTOR_PORT)
};

} // namespace coder::descriptor
