#pragma once

// The JSON value type the model description is written with, and the place
// of a value in a document, as a JSON pointer (RFC 6901).

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
//
// A place is a link in a chain that ends at a root, so that naming the
// place of every value read costs nothing until a message needs its text.
// A child refers to its parent: it is made from a named place only
// (`place / "key"`, not `Place() / "a" / "b"`) and cannot be copied, so it
// cannot outlive the parent. To keep a place, keep its pointer() and make a
// root of it later.
class Place {
public:
    // The whole document.
    Place() = default;
    // The place whose pointer is `pointer`, which must outlive it.
    explicit Place(std::string_view pointer) : text_(pointer) {}

    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    Place operator/(std::string_view key) const& { return Place(this, key, 0, false); }
    Place operator/(std::size_t index) const& { return Place(this, {}, index, true); }
    // A child of a temporary would outlive it.
    Place operator/(std::string_view key) && = delete;
    Place operator/(std::size_t index) && = delete;

    std::string pointer() const;

private:
    Place(const Place* parent, std::string_view key, std::size_t index, bool isIndex)
        : parent_(parent), text_(key), index_(index), isIndex_(isIndex) {}

    void append(std::string& out) const;

    // Null for a root, whose text is its whole pointer.
    const Place* parent_ = nullptr;
    // The key, or the pointer of a root.
    std::string_view text_;
    std::size_t index_ = 0;
    bool isIndex_ = false;
};

inline std::string Place::pointer() const {
    std::string out;
    append(out);
    return out;
}

inline void Place::append(std::string& out) const {
    if (!parent_) {
        out.append(text_);
        return;
    }
    parent_->append(out);
    out += '/';
    if (isIndex_) {
        out += std::to_string(index_);
        return;
    }
    for (char c : text_) {
        if (c == '~')
            out += "~0";
        else if (c == '/')
            out += "~1";
        else
            out += c;
    }
}

} // namespace VelCG::description
