#include "coder/descriptor/GraphicalBlock.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(GraphicalBlock, CODER_DESCRIPTOR_GRAPHICAL_BLOCK)
CODER_DESCRIPTOR_DEFINE_CREATE(GraphicalBlock)

} // namespace coder::descriptor
