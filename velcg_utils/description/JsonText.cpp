#include "description/JsonText.hpp"

#include <algorithm>

namespace VelCG::description {

namespace {

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

} // namespace

std::string printJson(const Json& document) {
    std::string out;
    print(document, 0, 0, out);
    out += '\n';
    return out;
}

} // namespace VelCG::description
