#include "coder/descriptor/Model.hpp"

#include "RecordDefinition.hpp"

namespace coder::descriptor {

CODER_DESCRIPTOR_DEFINE_RECORD(Model, CODER_DESCRIPTOR_MODEL)

Model ModelCreator::createModel() {
    // A store holds one model description: rebuilding in the same build
    // directory replaces the earlier one instead of adding a second.
    removeAllRecords();
    return objectAs<Model>(create());
}

} // namespace coder::descriptor
