#include "coder/descriptor/System.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(System, CODER_DESCRIPTOR_SYSTEM)
CODER_DESCRIPTOR_DEFINE_CREATE(System)

} // namespace coder::descriptor
