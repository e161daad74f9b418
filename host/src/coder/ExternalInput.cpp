#include "coder/descriptor/ExternalInput.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(ExternalInput, CODER_DESCRIPTOR_EXTERNAL_INPUT)
CODER_DESCRIPTOR_DEFINE_CREATE(ExternalInput)

} // namespace coder::descriptor
