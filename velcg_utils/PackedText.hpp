#pragma once

// Several text fields of one object in a single heap block, for objects of
// which a model holds very many and whose fields are mostly empty or short.
// The owner keeps a PackedText pointer, null while every field is empty. A
// field whose characters all lie in 0..255 takes one byte per character,
// any other field one wchar_t per character; both read back exactly as set.

#include <cstddef>
#include <string>
#include <string_view>

namespace VelCG::detail {

// An opaque heap block, never constructed: it is handled only through
// these functions, with the owner's pointer.
class PackedText {
public:
    // The number of fields one block can keep.
    static constexpr std::size_t kMaxFields = 16;

    PackedText() = delete;

    // Field `field` (below kMaxFields); empty when it was never set.
    static std::wstring wide(const PackedText* text, std::size_t field);
    // A field set with the narrow setter, byte for byte.
    static std::string narrow(const PackedText* text, std::size_t field);

    // Each replaces one field of `text`, leaving the others as they were,
    // in a new block that replaces the old; an empty value frees the field's
    // room, and the block once every field is empty. A failed allocation
    // changes nothing.
    static void set(PackedText*& text, std::size_t field, const std::wstring& value);
    static void set(PackedText*& text, std::size_t field, const std::string& value);

    // A field's new value for setUtf8: UTF-8 text, read back with wide().
    struct Utf8Value {
        std::size_t field;
        std::string_view utf8;
    };
    // Replaces the fields of `values` (a field given twice takes the last
    // value) in one new block, as set with their wide text would one by
    // one. Raises "i18n:InvalidText" for text that is not UTF-8; that, or a
    // failed allocation, changes nothing.
    static void setUtf8(PackedText*& text, const Utf8Value* values, std::size_t count);

    // Frees the block and nulls the pointer.
    static void release(PackedText*& text) noexcept;
};

} // namespace VelCG::detail
