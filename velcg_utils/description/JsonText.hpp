#pragma once

// Reading and writing the text of a JSON document.

#include <string>

#include "description/Json.hpp"

namespace VelCG::description {

// Parses text. Raises "VelCG:ModelDescription:MalformedJson" with the line
// and column of the first error, and "VelCG:ModelDescription:DuplicateField"
// for an object that names a key twice (which a JSON parser would otherwise
// resolve silently). sourceName names the text in messages.
Json parseJson(const std::string& text, const std::string& sourceName);

// The document as text: two-space indentation, one member or element per
// line, except that an object or array holding no object or array is
// written on one line when that line stays within 100 characters; keys in
// the order the objects hold them; a final newline. The same document always
// gives the same text. REQUIRES: strings are valid UTF-8 and numbers finite.
std::string printJson(const Json& document);

} // namespace VelCG::description
