#pragma once

#include <cstddef>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class State;
} // namespace descriptor
} // namespace coder

namespace VelCG {

// A continuous state or state derivative of a block.
class VELCG_API State : public vel::mi::Handle {
public:
    State() = default;
    explicit State(std::vector<int> dims) : dimensions_(std::move(dims)) {}
    State(const State&) = default;
    State& operator=(const State&) = default;
    ~State() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    const std::vector<int>& getDimensions() const { return dimensions_; }
    void setDimensions(const std::vector<int>& dims) { dimensions_ = dims; }
    // Replaces one dimension; an index past the end raises
    // "VelCG:Model:IndexOutOfRange".
    void setDimensionValue(std::size_t index, int value);

    // Writes a new descriptor state holding the dimensions, in order.
    // REQUIRES: a transaction is open on repository.
    coder::descriptor::State serialize(coder::Repository& repository) const;
    // Appends the dimensions, in order, to the given descriptor state's.
    // REQUIRES: a transaction is open on repository; state is not null.
    void serialize(coder::Repository& repository, coder::descriptor::State state) const;

private:
    std::vector<int> dimensions_;
};

} // namespace VelCG
