#pragma once

#include <utility>

#include "vel/i18n/Text.hpp"

namespace coder::descriptor {

using vel::i18n::ustring;

// A string-list element: one text of a value list (enumeration labels,
// SIDs). Stored as a row of the list it is appended to.
class StringListElement {
public:
    explicit StringListElement(ustring value = {}) : value_(std::move(value)) {}
    const ustring& getValue() const { return value_; }

private:
    ustring value_;
};

} // namespace coder::descriptor
