#include "PackedText.hpp"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>

#include "vel/i18n/Text.hpp"

namespace VelCG::detail {

namespace {

using Byte = unsigned char;
using Mask = std::uint16_t;
using Word = std::uint32_t;
static_assert(PackedText::kMaxFields <= 8 * sizeof(Mask), "one mask bit per field");

// The length bits of a word.
constexpr std::size_t kMaxLength = static_cast<Word>(-1) >> 1;

// One stored field: where its characters are and how they are stored.
struct Field {
    const Byte* characters = nullptr;
    std::size_t length = 0;
    bool wide = false;

    std::size_t bytes() const { return length * (wide ? sizeof(wchar_t) : 1); }
};

Mask maskOf(const Byte* block) {
    Mask mask;
    std::memcpy(&mask, block, sizeof mask);
    return mask;
}

std::size_t countOf(Mask mask) {
    std::size_t count = 0;
    for (; mask; mask &= static_cast<Mask>(mask - 1)) ++count;
    return count;
}

// Every field of the block, empty ones included.
void unpack(const Byte* block, Field (&fields)[PackedText::kMaxFields]) {
    if (!block) return;
    const Mask mask = maskOf(block);
    const Byte* word = block + sizeof(Mask);
    const Byte* characters = word + countOf(mask) * sizeof(Word);
    for (std::size_t f = 0; f < PackedText::kMaxFields; ++f) {
        if (!(mask >> f & 1u)) continue;
        Word value;
        std::memcpy(&value, word, sizeof value);
        word += sizeof(Word);
        fields[f] = {characters, value >> 1, (value & 1u) != 0};
        characters += fields[f].bytes();
    }
}

Field fieldOf(const PackedText* text, std::size_t field) {
    assert(field < PackedText::kMaxFields && "a field number below kMaxFields");
    Field fields[PackedText::kMaxFields];
    unpack(reinterpret_cast<const Byte*>(text), fields);
    return fields[field];
}

// The fields in one new block, or null when all are empty.
Byte* pack(const Field (&fields)[PackedText::kMaxFields]) {
    Mask mask = 0;
    std::size_t size = sizeof(Mask);
    for (std::size_t f = 0; f < PackedText::kMaxFields; ++f) {
        if (fields[f].length == 0) continue;
        mask = static_cast<Mask>(mask | 1u << f);
        size += sizeof(Word) + fields[f].bytes();
    }
    if (!mask) return nullptr;
    auto* block = static_cast<Byte*>(::operator new(size));
    std::memcpy(block, &mask, sizeof mask);
    Byte* word = block + sizeof(Mask);
    Byte* characters = word + countOf(mask) * sizeof(Word);
    for (const Field& field : fields) {
        if (field.length == 0) continue;
        const Word value = static_cast<Word>(field.length << 1 | (field.wide ? 1u : 0u));
        std::memcpy(word, &value, sizeof value);
        word += sizeof(Word);
        std::memcpy(characters, field.characters, field.bytes());
        characters += field.bytes();
    }
    return block;
}

void replace(PackedText*& text, std::size_t field, Field value) {
    assert(field < PackedText::kMaxFields && "a field number below kMaxFields");
    if (value.length > kMaxLength) throw std::length_error("A text field is too long to keep.");
    Field fields[PackedText::kMaxFields];
    unpack(reinterpret_cast<const Byte*>(text), fields);
    fields[field] = value;
    Byte* block = pack(fields);
    PackedText::release(text);
    text = reinterpret_cast<PackedText*>(block);
}

bool fitsInByte(wchar_t c) { return static_cast<std::make_unsigned_t<wchar_t>>(c) <= 0xFFu; }

// Wide text as a field: one byte per character when every character fits
// in one, the bytes kept in `bytes`.
Field wideField(const std::wstring& value, std::string& bytes) {
    for (wchar_t c : value)
        if (!fitsInByte(c)) return {reinterpret_cast<const Byte*>(value.data()), value.size(), true};
    bytes.assign(value.size(), '\0');
    for (std::size_t i = 0; i < value.size(); ++i)
        bytes[i] = static_cast<char>(static_cast<unsigned char>(value[i]));
    return {reinterpret_cast<const Byte*>(bytes.data()), bytes.size(), false};
}

} // namespace

std::wstring PackedText::wide(const PackedText* text, std::size_t field) {
    const Field f = fieldOf(text, field);
    std::wstring out(f.length, L'\0');
    if (f.wide)
        std::memcpy(out.data(), f.characters, f.bytes());
    else
        for (std::size_t i = 0; i < f.length; ++i) out[i] = static_cast<wchar_t>(f.characters[i]);
    return out;
}

std::string PackedText::narrow(const PackedText* text, std::size_t field) {
    const Field f = fieldOf(text, field);
    assert(!f.wide && "a field set with the narrow setter");
    return std::string(reinterpret_cast<const char*>(f.characters), f.length);
}

void PackedText::set(PackedText*& text, std::size_t field, const std::wstring& value) {
    std::string bytes;
    replace(text, field, wideField(value, bytes));
}

void PackedText::set(PackedText*& text, std::size_t field, const std::string& value) {
    replace(text, field, {reinterpret_cast<const Byte*>(value.data()), value.size(), false});
}

void PackedText::setUtf8(PackedText*& text, const Utf8Value* values, std::size_t count) {
    Field fields[kMaxFields];
    unpack(reinterpret_cast<const Byte*>(text), fields);
    // ASCII is kept as it is; other text is decoded, into these (made only
    // then).
    struct Decoded {
        std::wstring wide;
        std::string bytes;
    };
    std::unique_ptr<Decoded[]> decoded;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t f = values[i].field;
        const std::string_view utf8 = values[i].utf8;
        assert(f < kMaxFields && "a field number below kMaxFields");
        if (utf8.size() > kMaxLength) throw std::length_error("A text field is too long to keep.");
        const bool ascii = std::all_of(utf8.begin(), utf8.end(), [](char c) { return (c & 0x80) == 0; });
        if (ascii) {
            fields[f] = {reinterpret_cast<const Byte*>(utf8.data()), utf8.size(), false};
            continue;
        }
        if (!decoded) decoded = std::make_unique<Decoded[]>(kMaxFields);
        decoded[f].wide = vel::i18n::toWide(utf8);
        fields[f] = wideField(decoded[f].wide, decoded[f].bytes);
    }
    Byte* block = pack(fields);
    release(text);
    text = reinterpret_cast<PackedText*>(block);
}

void PackedText::release(PackedText*& text) noexcept {
    ::operator delete(static_cast<void*>(text));
    text = nullptr;
}

} // namespace VelCG::detail
