#include "coder/descriptor/Port.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(Port, CODER_DESCRIPTOR_PORT)
CODER_DESCRIPTOR_DEFINE_CREATE(Port)

} // namespace coder::descriptor
