#include "coder/descriptor/IOMap.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(IOMap, CODER_DESCRIPTOR_IO_MAP)
CODER_DESCRIPTOR_DEFINE_CREATE(IOMap)

} // namespace coder::descriptor
