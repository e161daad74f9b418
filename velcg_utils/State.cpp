#include "velcg/State.hpp"

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

} // namespace VelCG
