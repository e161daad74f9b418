#include "coder/descriptor/BlockParameter.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t { kName };
enum List : std::size_t { kModelParametersList };
} // namespace

const RecordKind& BlockParameter::kind() {
    static const RecordKind kind{
        "BlockParameter",
        {
            {"Name", FieldType::Text, false, nullptr, 0, 0},
        },
        {
            {"ModelParameters", &ModelParameter::kind, FieldType::Reference},
        },
    };
    return kind;
}

ustring BlockParameter::getName() const { return text(kName); }
Sequence<ModelParameter> BlockParameter::getModelParameters() const {
    return Sequence<ModelParameter>(sequence(kModelParametersList));
}

BlockParameterCreator::BlockParameterCreator(Repository& repository)
    : Creator(repository, BlockParameter::kind()) {}

void BlockParameterCreator::setName(const ustring& value) { setText(kName, value); }

BlockParameter BlockParameterCreator::createBlockParameter() { return objectAs<BlockParameter>(create()); }

} // namespace coder::descriptor
