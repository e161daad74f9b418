#include "description/JsonText.hpp"

#include <algorithm>
#include <set>
#include <vector>

#include "description/Diagnostics.hpp"

namespace VelCG::description {

namespace {

// Follows a valid document event by event, keeping the place of the value
// being read, and remembers the first key an object names twice. The
// parser's DOM callbacks cannot do this: they rescan a container's elements
// each time one of them ends, which makes long lists quadratic.
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
            duplicate_ = placeOfKey();
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
    const Place& duplicate() const { return duplicate_; }

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
    Place placeOfKey() const {
        Place place;
        for (const Frame& frame : stack_) place = frame.isArray ? place / frame.index : place / frame.key;
        return place;
    }

    std::vector<Frame> stack_;
    bool found_ = false;
    Place duplicate_;
};

// The parser's own explanation, without its prefix and position.
std::string reasonOf(const std::string& what) {
    const std::size_t error = what.find("parse error");
    const std::size_t colon = error == std::string::npos ? std::string::npos : what.find(": ", error);
    std::string reason = colon == std::string::npos ? what : what.substr(colon + 2);
    while (!reason.empty() && (reason.back() == '.' || reason.back() == ' ')) reason.pop_back();
    return reason;
}

// Lines of the output are kept to this width where an object or array is
// written on one line.
constexpr std::size_t kLineWidth = 100;

std::string scalarText(const Json& value) {
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::strict);
}

bool isFlat(const Json& value) {
    return std::none_of(value.begin(), value.end(),
                        [](const Json& e) { return e.is_object() || e.is_array(); });
}

// A flat object or array on one line: {"a": 1, "b": 2}, [1, 2].
std::string oneLine(const Json& value) {
    std::string out = value.is_object() ? "{" : "[";
    std::size_t i = 0;
    for (auto it = value.begin(); it != value.end(); ++it, ++i) {
        if (i) out += ", ";
        if (value.is_object()) out += scalarText(it.key()) + ": ";
        out += scalarText(*it);
    }
    return out + (value.is_object() ? "}" : "]");
}

// Appends value; `used` is the width of the line before it.
void print(const Json& value, std::size_t indent, std::size_t used, std::string& out) {
    if (!value.is_object() && !value.is_array()) {
        out += scalarText(value);
        return;
    }
    if (value.empty()) {
        out += value.is_object() ? "{}" : "[]";
        return;
    }
    if (isFlat(value)) {
        std::string line = oneLine(value);
        // The comma that may follow counts too.
        if (used + line.size() + 1 <= kLineWidth) {
            out += line;
            return;
        }
    }
    const std::string inner(indent + 2, ' ');
    out += value.is_object() ? "{\n" : "[\n";
    std::size_t i = 0;
    for (auto it = value.begin(); it != value.end(); ++it, ++i) {
        out += inner;
        std::size_t width = inner.size();
        if (value.is_object()) {
            const std::string key = scalarText(it.key()) + ": ";
            out += key;
            width += key.size();
        }
        print(*it, indent + 2, width, out);
        out += i + 1 < value.size() ? ",\n" : "\n";
    }
    out += std::string(indent, ' ');
    out += value.is_object() ? '}' : ']';
}

[[noreturn]] void malformed(const std::string& text, const std::string& sourceName, std::size_t offset,
                            const std::string& reason) {
    const std::size_t stop = std::min(offset, text.size());
    const std::size_t lineStart = stop == 0 ? std::string::npos : text.rfind('\n', stop - 1);
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(stop), '\n');
    const std::size_t column = lineStart == std::string::npos ? stop + 1 : stop - lineStart;
    raise(key::kMalformedJson, {sourceName, std::to_string(line), std::to_string(column), reason});
}

} // namespace

Json parseJson(const std::string& text, const std::string& sourceName) {
    Json document;
    try {
        document = Json::parse(text);
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
        malformed(text, sourceName, at == std::string::npos ? 0 : at, reason);
    }
    // The document is valid JSON: a second, DOM-free pass looks for keys
    // an object names twice (the DOM keeps only one of them).
    DuplicateKeyFinder finder;
    Json::sax_parse(text, &finder);
    if (finder.found()) raise(key::kDuplicateField, {sourceName, finder.duplicate().pointer()});
    return document;
}

std::string printJson(const Json& document) {
    std::string out;
    print(document, 0, 0, out);
    out += '\n';
    return out;
}

} // namespace VelCG::description
