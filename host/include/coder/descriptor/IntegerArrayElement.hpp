#pragma once

#include <cstdint>

namespace coder::descriptor {

// An integer-array element: one integer of a value list (dimensions,
// enumeration values, port indices). Stored as a row of the list it is
// appended to; an element that is never appended leaves nothing behind.
class IntegerArrayElement {
public:
    explicit IntegerArrayElement(std::int64_t value = 0) : value_(value) {}
    std::int64_t getValue() const { return value_; }

private:
    std::int64_t value_;
};

} // namespace coder::descriptor
