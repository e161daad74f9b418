#include "coder/descriptor/State.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum List : std::size_t { kDimensionsList };
} // namespace

const RecordKind& State::kind() {
    static const RecordKind kind{
        "State",
        {},
        {
            {"Dimensions", nullptr, FieldType::Integer},
        },
    };
    return kind;
}

Sequence<IntegerArrayElement> State::getDimensions() const {
    return Sequence<IntegerArrayElement>(sequence(kDimensionsList));
}

StateCreator::StateCreator(Repository& repository) : Creator(repository, State::kind()) {}

State StateCreator::createState() { return objectAs<State>(create()); }

} // namespace coder::descriptor
