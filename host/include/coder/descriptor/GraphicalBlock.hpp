#pragma once

#include <cstdint>

#include "coder/descriptor/BlockParameter.hpp"
#include "coder/descriptor/DataInterface.hpp"
#include "coder/descriptor/Port.hpp"
#include "coder/descriptor/RecordMembers.hpp"
#include "coder/descriptor/State.hpp"

// The fields and sequences of a GraphicalBlock record, in column order: see
// coder/descriptor/RecordMembers.hpp for the members each one declares.
#define CODER_DESCRIPTOR_GRAPHICAL_BLOCK(VALUE, OPTIONAL, REFERENCE, SEQUENCE) \
    VALUE(GraphicalName, ustring)                                              \
    VALUE(Name, ustring)                                                       \
    VALUE(SID, ustring)                                                        \
    VALUE(Type, ustring)                                                       \
    VALUE(Description, ustring)                                                \
    VALUE(ReferencedModelName, ustring)                                        \
    VALUE(IsProtectedModelBlock, bool)                                         \
    VALUE(Virtual, ustring)                                                    \
    VALUE(NumFcnCallOutputPorts, int32_t)                                      \
    OPTIONAL(ParentSystemSID, ustring)                                         \
    SEQUENCE(DataInputPorts, Port)                                             \
    SEQUENCE(DataOutputPorts, Port)                                            \
    SEQUENCE(ControlInputPorts, Port)                                          \
    SEQUENCE(ContinuousStates, State)                                          \
    SEQUENCE(Derivatives, State)                                               \
    SEQUENCE(DWorks, DataInterface)                                            \
    SEQUENCE(DiscreteStates, DataInterface)                                    \
    SEQUENCE(BlockParameters, BlockParameter)

namespace coder::descriptor {

// One block of the block diagram. ParentSystemSID is absent for a block
// without a parent subsystem.
class VELHOST_API GraphicalBlock : public Object {
    CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_GRAPHICAL_BLOCK)
};

class VELHOST_API GraphicalBlockCreator : public Creator {
    CODER_DESCRIPTOR_CREATOR(GraphicalBlock, CODER_DESCRIPTOR_GRAPHICAL_BLOCK)
};

} // namespace coder::descriptor
