#pragma once

// The text of a JSON document, as the description writer prints it.

#include <string>

#include "description/Json.hpp"

namespace VelCG::description {

// The document as text: two-space indentation, one member or element per
// line, except that an object or array holding no object or array is
// written on one line when that line stays within 100 characters; keys in
// the order the objects hold them; a final newline. The same document always
// gives the same text. REQUIRES: strings are valid UTF-8 and numbers finite.
std::string printJson(const Json& document);

} // namespace VelCG::description
