#pragma once

#include <string>

#include "vel/HostExport.hpp"

namespace coder {

class Repository;

namespace descriptor {

class Object;

// A dump walks the model stored in the repository (or one record), depth
// first: each record's fields in order, a set reference entering the record
// it refers to, then each sequence in order, entering its records. The same
// stored content gives the same dump. A store without a model raises
// "coder:descriptor:NoModel"; a record that refers back to one of its
// ancestors is not entered again but marked as a cycle; nesting deeper than
// 512 records raises "coder:descriptor:TooDeep".

// The dump as an indented text tree. One line per field ("Name: value";
// texts quoted with JSON escapes, booleans true/false, "(absent)" for an
// unset optional field, "(none)" for an unset reference); a referenced
// record nests below its field; a sequence of records reads "Name: [n]"
// followed by its elements "[i] Kind", a value list reads
// "Name: [v0, v1, ...]"; a cycle reads "Kind (cycle)".
VELHOST_API std::string dumpText(Repository& repository);
VELHOST_API std::string dumpText(const Object& record);

// The dump as JSON, indented by two spaces and ending with a newline. A
// record is an object: "kind", then its fields by name (null for an absent
// field or an unset reference, a nested object for a set one), then its
// sequences by name as arrays. A cycle is {"kind": ..., "cycle": true}. A
// real that is not finite is the string "Infinity", "-Infinity" or "NaN".
VELHOST_API std::string dumpJson(Repository& repository);
VELHOST_API std::string dumpJson(const Object& record);

// A text quoted with JSON escapes.
VELHOST_API std::string quoteText(const std::string& utf8);

} // namespace descriptor
} // namespace coder
