#include "coder/descriptor/BlockHierarchyMap.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(BlockHierarchyMap, CODER_DESCRIPTOR_BLOCK_HIERARCHY_MAP)
CODER_DESCRIPTOR_DEFINE_CREATE(BlockHierarchyMap)

} // namespace coder::descriptor
