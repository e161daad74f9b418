#pragma once

// A model description's JSON as the reader walks it: parsed by simdjson
// into one compact tape that values point into, instead of a tree of
// separately allocated nodes.

#include <cstddef>
#include <memory>
#include <optional>
#include <simdjson.h>
#include <string>
#include <string_view>

#include "description/Json.hpp"

namespace VelCG::description {

// A value of a JsonDocument: a position on its tape, cheap to copy, valid
// while the document lives.
using JsonValue = simdjson::dom::element;
using JsonObject = simdjson::dom::object;
using JsonArray = simdjson::dom::array;

// Text with the zeroed bytes after its end that the parser reads ahead into.
using PaddedText = simdjson::padded_string;

class JsonDocument {
public:
    // Parses text, which is freed before the document is returned. Raises
    // "VelCG:ModelDescription:MalformedJson" with the line and column of
    // the first error of text that is not JSON, the parser's reason as
    // nlohmann-json words it. Text that JSON allows but simdjson refuses (a
    // leading byte-order mark, integers beyond 64 bits, which are read as
    // numbers with a fraction as nlohmann-json reads them, text after a NUL
    // character) is read as nlohmann-json reads it. sourceName names the
    // text in messages.
    static JsonDocument parse(PaddedText text, const std::string& sourceName);

    JsonDocument(JsonDocument&&) noexcept;
    JsonDocument& operator=(JsonDocument&&) noexcept;
    ~JsonDocument();

    JsonValue root() const { return document_->root(); }

private:
    JsonDocument();

    // On the heap, so that values stay valid when the document moves.
    std::unique_ptr<simdjson::dom::document> document_;
};

// The pointer of the first key, in document order, that an object of value
// names twice; none when each object names each key once.
std::optional<std::string> firstRepeatedKey(JsonValue value, const Place& place);

// The number of elements of array.
std::size_t sizeOf(JsonArray array);

// The value as nlohmann-json holds it, objects in document order.
Json toJson(JsonValue value);

} // namespace VelCG::description
