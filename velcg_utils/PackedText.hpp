#pragma once

// Several text fields of one object in a single heap block, for objects of
// which a model holds very many and whose fields are mostly empty or short.
// The owner keeps a PackedText pointer, null while every field is empty. A
// field whose characters all lie in 0..255 takes one byte per character,
// any other field one wchar_t per character; both read back exactly as set.

#include <cstddef>
#include <string>

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

    // Frees the block and nulls the pointer.
    static void release(PackedText*& text) noexcept;
};

} // namespace VelCG::detail
