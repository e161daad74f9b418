#include "coder/descriptor/GraphicalSystem.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(GraphicalSystem, CODER_DESCRIPTOR_GRAPHICAL_SYSTEM)
CODER_DESCRIPTOR_DEFINE_CREATE(GraphicalSystem)

} // namespace coder::descriptor
