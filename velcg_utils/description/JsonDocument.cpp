#include "description/JsonDocument.hpp"

#include <algorithm>
#include <cstdint>
#include <set>
#include <unordered_set>
#include <utility>
#include <vector>

#include "description/Diagnostics.hpp"

namespace VelCG::description {

namespace {

// Follows a valid document event by event, keeping the place of the value
// being read, and remembers the first key an object names twice. Used where
// the text is read through nlohmann-json, whose DOM keeps one of the two.
class DuplicateKeyFinder final : public nlohmann::json_sax<Json> {
public:
    bool null() override { return valueDone(); }
    bool boolean(bool) override { return valueDone(); }
    bool number_integer(number_integer_t) override { return valueDone(); }
    bool number_unsigned(number_unsigned_t) override { return valueDone(); }
    bool number_float(number_float_t, const string_t&) override { return valueDone(); }
    bool string(string_t&) override { return valueDone(); }
    bool binary(binary_t&) override { return valueDone(); }
    bool start_object(std::size_t) override {
        stack_.push_back(Frame{false});
        return true;
    }
    bool key(string_t& name) override {
        Frame& frame = stack_.back();
        frame.key = name;
        if (!frame.keys.insert(frame.key).second && !found_) {
            found_ = true;
            duplicate_ = pointerOfKey();
        }
        return true;
    }
    bool end_object() override { return endContainer(); }
    bool start_array(std::size_t) override {
        stack_.push_back(Frame{true});
        return true;
    }
    bool end_array() override { return endContainer(); }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

    bool found() const { return found_; }
    const std::string& duplicate() const { return duplicate_; }

private:
    struct Frame {
        explicit Frame(bool array) : isArray(array) {}
        bool isArray;
        std::size_t index = 0;
        std::string key;
        std::set<std::string> keys;
    };

    bool valueDone() {
        if (!stack_.empty() && stack_.back().isArray) ++stack_.back().index;
        return true;
    }
    bool endContainer() {
        stack_.pop_back();
        return valueDone();
    }
    std::string pointerOfKey() const {
        const Place root;
        std::string pointer;
        for (const Frame& frame : stack_)
            pointer += frame.isArray ? (root / frame.index).pointer() : (root / frame.key).pointer();
        return pointer;
    }

    std::vector<Frame> stack_;
    bool found_ = false;
    std::string duplicate_;
};

// The parser's own explanation, without its prefix and position.
std::string reasonOf(const std::string& what) {
    const std::size_t error = what.find("parse error");
    const std::size_t colon = error == std::string::npos ? std::string::npos : what.find(": ", error);
    std::string reason = colon == std::string::npos ? what : what.substr(colon + 2);
    while (!reason.empty() && (reason.back() == '.' || reason.back() == ' ')) reason.pop_back();
    return reason;
}

[[noreturn]] void malformed(std::string_view text, const std::string& sourceName, std::size_t offset,
                            const std::string& reason) {
    const std::size_t stop = std::min(offset, text.size());
    const std::size_t lineStart = stop == 0 ? std::string_view::npos : text.rfind('\n', stop - 1);
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(stop), '\n');
    const std::size_t column = lineStart == std::string_view::npos ? stop + 1 : stop - lineStart;
    raise(messages::ModelDescription::MalformedJson,
          {sourceName, std::to_string(line), std::to_string(column), reason});
}

// Text simdjson refused, read by nlohmann-json, whose grammar the messages
// have always followed: MalformedJson where it refuses the text too,
// DuplicateField for a key named twice, and otherwise the document as
// compact text that simdjson reads the same way.
PaddedText throughReference(std::string_view text, const std::string& sourceName) {
    Json document;
    try {
        document = Json::parse(text.begin(), text.end());
    } catch (const nlohmann::json::parse_error& e) {
        // e.byte counts from 1 and names the character the parser stopped at.
        malformed(text, sourceName, e.byte == 0 ? 0 : e.byte - 1, reasonOf(e.what()));
    } catch (const nlohmann::json::exception& e) {
        // A number too large for a double ("number overflow parsing '1e999'")
        // comes without a position: the first occurrence of the number is
        // the best guess.
        std::string reason = e.what();
        reason = reason.substr(reason.find("] ") == std::string::npos ? 0 : reason.find("] ") + 2);
        const std::size_t open = reason.find('\'');
        const std::size_t close = open == std::string::npos ? open : reason.find('\'', open + 1);
        const std::size_t at =
            close == std::string::npos ? 0 : text.find(reason.substr(open + 1, close - open - 1));
        while (!reason.empty() && reason.back() == '.') reason.pop_back();
        malformed(text, sourceName, at == std::string_view::npos ? 0 : at, reason);
    }
    DuplicateKeyFinder finder;
    Json::sax_parse(text.begin(), text.end(), &finder);
    if (finder.found()) raise(messages::ModelDescription::DuplicateField, {sourceName, finder.duplicate()});
    return PaddedText(document.dump());
}

// Parses padded text into document; a deeper nesting than the parser's
// default is read too, as any depth is JSON (the reader refuses what no
// model needs, naming the place).
simdjson::error_code parseInto(simdjson::dom::document& document, const PaddedText& text) {
    simdjson::dom::parser parser;
    auto error = parser
                     .parse_into_document(document, reinterpret_cast<const std::uint8_t*>(text.data()),
                                          text.size(), false)
                     .error();
    if (error != simdjson::DEPTH_ERROR) return error;
    // No document nests deeper than half its length.
    if (auto allocated = parser.allocate(text.size(), text.size() / 2 + 2)) return allocated;
    return parser
        .parse_into_document(document, reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), false)
        .error();
}

} // namespace

JsonDocument::JsonDocument() : document_(std::make_unique<simdjson::dom::document>()) {}
JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;
JsonDocument::~JsonDocument() = default;

JsonDocument JsonDocument::parse(PaddedText text, const std::string& sourceName) {
    JsonDocument result;
    auto error = parseInto(*result.document_, text);
    if (error == simdjson::MEMALLOC || error == simdjson::CAPACITY)
        raise(messages::ModelDescription::ReadFailed, {sourceName, simdjson::error_message(error)});
    if (error) {
        PaddedText canonical = throughReference(text, sourceName);
        text = PaddedText();
        error = parseInto(*result.document_, canonical);
        if (error)
            raise(messages::ModelDescription::ReadFailed, {sourceName, simdjson::error_message(error)});
    }
    return result;
}

std::optional<std::string> firstRepeatedKey(JsonValue value, const Place& place) {
    // Depth first in document order, with a stack of our own: any nesting is
    // walked.
    struct Frame {
        bool isArray;
        JsonObject::iterator key, keysEnd;
        JsonObject object;
        JsonArray::iterator element, elementsEnd;
        std::size_t index;
        // The key of the value being walked.
        std::string_view current;
        // The object's keys so far, once it has too many to compare pairwise.
        std::unordered_set<std::string_view> keys;
    };
    constexpr std::size_t kPairwise = 16;
    std::vector<Frame> stack;
    auto enter = [&stack](JsonValue v) {
        if (v.type() == simdjson::dom::element_type::OBJECT) {
            const JsonObject object = v.get_object().value_unsafe();
            stack.push_back(Frame{false, object.begin(), object.end(), object, {}, {}, 0, {}, {}});
        } else if (v.type() == simdjson::dom::element_type::ARRAY) {
            const JsonArray array = v.get_array().value_unsafe();
            stack.push_back(Frame{true, {}, {}, {}, array.begin(), array.end(), 0, {}, {}});
        }
    };
    enter(value);
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.isArray ? frame.element == frame.elementsEnd : frame.key == frame.keysEnd) {
            stack.pop_back();
            continue;
        }
        const std::size_t index = frame.index++;
        if (frame.isArray) {
            const JsonValue element = *frame.element;
            ++frame.element;
            enter(element);
            continue;
        }
        const std::string_view key = frame.key.key();
        bool repeated = false;
        if (index < kPairwise) {
            for (auto earlier = frame.object.begin(); earlier != frame.key && !repeated; ++earlier)
                repeated = earlier.key() == key;
        } else {
            if (frame.keys.empty())
                for (auto earlier = frame.object.begin(); earlier != frame.key; ++earlier)
                    frame.keys.insert(earlier.key());
            repeated = !frame.keys.insert(key).second;
        }
        if (repeated) {
            frame.current = key;
            std::string pointer = place.pointer();
            const Place root;
            // Each array has moved past the element being walked.
            for (const Frame& f : stack)
                pointer += f.isArray ? (root / (f.index - 1)).pointer() : (root / f.current).pointer();
            return pointer;
        }
        frame.current = key;
        const JsonValue element = frame.key.value();
        ++frame.key;
        enter(element);
    }
    return std::nullopt;
}

std::size_t sizeOf(JsonArray array) {
    // The tape counts up to 0xFFFFFF elements; beyond, they are counted.
    constexpr std::size_t kCounted = 0xFFFFFF;
    std::size_t size = array.size();
    if (size < kCounted) return size;
    size = 0;
    for (auto it = array.begin(); it != array.end(); ++it) ++size;
    return size;
}

Json toJson(JsonValue value) {
    using Type = simdjson::dom::element_type;
    switch (value.type()) {
        case Type::OBJECT: {
            Json out = Json::object();
            const JsonObject object = value.get_object().value_unsafe();
            for (const auto field : object) out[std::string(field.key)] = toJson(field.value);
            return out;
        }
        case Type::ARRAY: {
            Json out = Json::array();
            const JsonArray array = value.get_array().value_unsafe();
            for (const JsonValue element : array) out.push_back(toJson(element));
            return out;
        }
        case Type::INT64:
            return value.get_int64().value_unsafe();
        case Type::UINT64:
            return value.get_uint64().value_unsafe();
        case Type::DOUBLE:
            return value.get_double().value_unsafe();
        case Type::STRING:
            return std::string(value.get_string().value_unsafe());
        case Type::BOOL:
            return value.get_bool().value_unsafe();
        case Type::NULL_VALUE:
            return nullptr;
    }
    return nullptr;
}

} // namespace VelCG::description
