#include "coder/descriptor/BlockParameter.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(BlockParameter, CODER_DESCRIPTOR_BLOCK_PARAMETER)
CODER_DESCRIPTOR_DEFINE_CREATE(BlockParameter)

} // namespace coder::descriptor
