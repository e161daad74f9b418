#include "velcg/State.hpp"

#include "coder/descriptor/State.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG {

State::~State() = default;

const char* State::getFullyQualifiedKorbTypeName() const { return "VelCG.State"; }

void State::setDimensionValue(std::size_t index, int value) {
    if (index >= dimensions_.size())
        throwIndexOutOfRange("the dimensions of a state", static_cast<std::int64_t>(index),
                             dimensions_.size());
    dimensions_[index] = value;
}

coder::descriptor::State State::serialize(coder::Repository& repository) const {
    coder::descriptor::StateCreator creator(repository);
    coder::descriptor::State state = creator.createState();
    serialize(repository, state);
    return state;
}

void State::serialize(coder::Repository&, coder::descriptor::State state) const {
    const auto dimensions = state.getDimensions();
    for (int dimension : dimensions_) dimensions.append(coder::descriptor::IntegerArrayElement(dimension));
}

} // namespace VelCG
