#pragma once

#include <string>

#include "vel/HostExport.hpp"

namespace coder {

class Repository;

namespace descriptor {

class Object;

// The model stored in the repository as an indented text tree, the same for
// the same stored content. One line per field ("Name: value"; texts quoted
// with JSON escapes, booleans true/false, "(absent)" for an unset optional
// field, "(none)" for an unset reference); a referenced record nests below
// its field; a sequence of records reads "Name: [n]" followed by its
// elements "[i] Kind", a value list reads "Name: [v0, v1, ...]".
// A store without a model raises "coder:descriptor:NoModel"; a record that
// refers back to one of its ancestors is printed as "Kind (cycle)".
VELHOST_API std::string dumpText(Repository& repository);
// The same for one record and what it holds.
VELHOST_API std::string dumpText(const Object& record);

// A text quoted with JSON escapes.
VELHOST_API std::string quoteText(const std::string& utf8);

} // namespace descriptor
} // namespace coder
