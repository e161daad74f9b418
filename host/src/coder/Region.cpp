#include "coder/descriptor/Region.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(Region, CODER_DESCRIPTOR_REGION)
CODER_DESCRIPTOR_DEFINE_CREATE(Region)

} // namespace coder::descriptor
