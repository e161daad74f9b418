#include "coder/descriptor/CoderGroup.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(CoderGroup, CODER_DESCRIPTOR_CODER_GROUP)
CODER_DESCRIPTOR_DEFINE_CREATE(CoderGroup)

} // namespace coder::descriptor
