#include "coder/descriptor/ModelParameter.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(ModelParameter, CODER_DESCRIPTOR_MODEL_PARAMETER)
CODER_DESCRIPTOR_DEFINE_CREATE(ModelParameter)

} // namespace coder::descriptor
