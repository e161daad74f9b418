#pragma once

// The JSON value type of the model description and the place of a value in
// a document, as a JSON pointer (RFC 6901).

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace VelCG::description {

// Objects keep their keys in insertion order, so that the writer's output
// follows the field tables.
using Json = nlohmann::ordered_json;

// A JSON pointer: "" is the whole document, "/systems/0/name" a field of
// the first system.
class Place {
public:
    Place() = default;

    Place operator/(std::string_view key) const {
        Place child(*this);
        child.pointer_ += '/';
        for (char c : key) {
            if (c == '~')
                child.pointer_ += "~0";
            else if (c == '/')
                child.pointer_ += "~1";
            else
                child.pointer_ += c;
        }
        return child;
    }
    Place operator/(std::size_t index) const {
        Place child(*this);
        child.pointer_ += '/' + std::to_string(index);
        return child;
    }

    const std::string& pointer() const { return pointer_; }

private:
    std::string pointer_;
};

} // namespace VelCG::description
