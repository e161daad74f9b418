#include "coder/descriptor/ToAsyncQueueBlock.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(ToAsyncQueueBlock, CODER_DESCRIPTOR_TO_ASYNC_QUEUE_BLOCK)
CODER_DESCRIPTOR_DEFINE_CREATE(ToAsyncQueueBlock)

} // namespace coder::descriptor
