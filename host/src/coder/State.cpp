#include "coder/descriptor/State.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(State, CODER_DESCRIPTOR_STATE)
CODER_DESCRIPTOR_DEFINE_CREATE(State)

} // namespace coder::descriptor
