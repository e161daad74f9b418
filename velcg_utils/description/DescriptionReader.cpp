#include "description/DescriptionReader.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "NearNames.hpp"
#include "description/Diagnostics.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/StoredCGModel.hpp"

namespace VelCG::description {

namespace {

const char* jsonTypeName(JsonValue value) {
    using Type = simdjson::dom::element_type;
    switch (value.type()) {
        case Type::NULL_VALUE:
            return "null";
        case Type::BOOL:
            return "a boolean";
        case Type::INT64:
        case Type::UINT64:
            return "an integer";
        case Type::DOUBLE:
            return "a number with a fraction or exponent";
        case Type::STRING:
            return "a string";
        case Type::ARRAY:
            return "an array";
        case Type::OBJECT:
            return "an object";
    }
    return "a value of another kind";
}

// UTF-8 as wide characters. The parser has checked that the text is UTF-8;
// most text is ASCII, which is widened without decoding.
std::wstring widen(std::string_view utf8) {
    std::wstring out(utf8.size(), L'\0');
    std::size_t n = 0;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            out[n++] = static_cast<wchar_t>(c);
            ++i;
            continue;
        }
        const std::size_t length = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : 2;
        std::uint32_t point = c & (0x7Fu >> length);
        for (std::size_t k = 1; k < length; ++k)
            point = point << 6 | (static_cast<unsigned char>(utf8[i + k]) & 0x3Fu);
        i += length;
        if constexpr (sizeof(wchar_t) >= 4) {
            out[n++] = static_cast<wchar_t>(point);
        } else if (point >= 0x10000) {
            point -= 0x10000;
            out[n++] = static_cast<wchar_t>(0xD800 + (point >> 10));
            out[n++] = static_cast<wchar_t>(0xDC00 + (point & 0x3FF));
        } else {
            out[n++] = static_cast<wchar_t>(point);
        }
    }
    out.resize(n);
    return out;
}

} // namespace

DescriptionReader::DescriptionReader(JsonValue document, std::string sourceName, StoredCGModel& model)
    : document_(document), sourceName_(std::move(sourceName)), model_(model), factory_(GetCGModelFactory()) {}

DescriptionReader::~DescriptionReader() = default;

void DescriptionReader::fail(const char* identifier, const Place& place,
                             std::vector<std::string> more) const {
    std::vector<std::string> arguments{sourceName_, place.pointer()};
    arguments.insert(arguments.end(), std::make_move_iterator(more.begin()),
                     std::make_move_iterator(more.end()));
    raise(identifier, std::move(arguments));
}

void DescriptionReader::invalid(const Place& place, const std::string& reason) const {
    // The template ends the sentence; a reason taken from another message
    // may already have.
    std::string text = reason;
    if (!text.empty() && text.back() == '.') text.pop_back();
    fail(messages::ModelDescription::InvalidValue, place, {text});
}

void DescriptionReader::wrongType(JsonValue value, const Place& place, const char* expected) const {
    fail(messages::ModelDescription::WrongType, place, {expected, jsonTypeName(value)});
}

void DescriptionReader::unknownEnumerator(const Place& place, const std::string& name,
                                          const std::vector<const char*>& names) const {
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i)
        list += (i == 0 ? "\"" : i + 1 == names.size() ? " or \"" : ", \"") + std::string(names[i]) + "\"";
    fail(messages::ModelDescription::UnknownEnumerator, place, {name, list});
}

void DescriptionReader::unknownField(const Place& place, std::string_view key,
                                     const std::vector<std::string>& known) const {
    const std::string name(key);
    fail(messages::ModelDescription::UnknownField, place / key,
         {name, names_detail::didYouMean(name, known, '"')});
}

void DescriptionReader::checkKnown(JsonValue value, const Place& place,
                                   const std::vector<std::string>& known) const {
    const JsonObject fields = object(value, place);
    for (auto it = fields.begin(); it != fields.end(); ++it) {
        const std::string_view key = it.key();
        if (std::find(known.begin(), known.end(), key) == known.end()) unknownField(place, key, known);
        // Every key is known, so an object repeating one has few keys.
        for (auto earlier = fields.begin(); earlier != it; ++earlier)
            if (earlier.key() == key) fail(messages::ModelDescription::DuplicateField, place / key);
    }
}

bool DescriptionReader::find(JsonValue object, std::string_view key, JsonValue& value) {
    auto found = object.get_object().value_unsafe().at_key(key);
    if (found.error()) return false;
    value = found.value_unsafe();
    return true;
}

JsonValue DescriptionReader::required(JsonValue object, const Place& place, const char* key) const {
    JsonValue value;
    if (!find(object, key, value)) fail(messages::ModelDescription::MissingField, place / key);
    return value;
}

std::int64_t DescriptionReader::integer(JsonValue value, const Place& place, std::int64_t low,
                                        std::int64_t high) const {
    using Type = simdjson::dom::element_type;
    const Type type = value.type();
    if (type != Type::INT64 && type != Type::UINT64) wrongType(value, place, "an integer");
    // The parser keeps a value as unsigned only beyond the signed range,
    // which is out of every range here.
    if (type == Type::UINT64)
        invalid(place, std::to_string(value.get_uint64().value_unsafe()) + " is not an integer from " +
                           std::to_string(low) + " to " + std::to_string(high));
    const std::int64_t n = value.get_int64().value_unsafe();
    if (n < low || n > high)
        invalid(place, std::to_string(n) + " is not an integer from " + std::to_string(low) + " to " +
                           std::to_string(high));
    return n;
}

std::int32_t DescriptionReader::int32(JsonValue value, const Place& place) const {
    return static_cast<std::int32_t>(integer(value, place, std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max()));
}

std::uint32_t DescriptionReader::uint32(JsonValue value, const Place& place) const {
    return static_cast<std::uint32_t>(integer(value, place, 0, std::numeric_limits<std::uint32_t>::max()));
}

std::int64_t DescriptionReader::int64(JsonValue value, const Place& place) const {
    return integer(value, place, std::numeric_limits<std::int64_t>::min(),
                   std::numeric_limits<std::int64_t>::max());
}

double DescriptionReader::real(JsonValue value, const Place& place) const {
    using Type = simdjson::dom::element_type;
    const Type type = value.type();
    if (type != Type::INT64 && type != Type::UINT64 && type != Type::DOUBLE)
        wrongType(value, place, "a number");
    // Integers convert as nlohmann-json converts them; the parser refuses
    // numbers beyond double.
    if (type == Type::INT64) return static_cast<double>(value.get_int64().value_unsafe());
    if (type == Type::UINT64) return static_cast<double>(value.get_uint64().value_unsafe());
    return value.get_double().value_unsafe();
}

std::string DescriptionReader::text(JsonValue value, const Place& place) const {
    return std::string(textView(value, place));
}

std::wstring DescriptionReader::wide(JsonValue value, const Place& place) const {
    return widen(textView(value, place));
}

std::vector<int> DescriptionReader::int32s(JsonValue value, const Place& place) const {
    const JsonArray list = array(value, place);
    std::vector<int> out;
    out.reserve(sizeOf(list));
    for (const JsonValue element : list) out.push_back(int32(element, place / out.size()));
    return out;
}

std::vector<std::string> DescriptionReader::texts(JsonValue value, const Place& place) const {
    const JsonArray list = array(value, place);
    std::vector<std::string> out;
    out.reserve(sizeOf(list));
    for (const JsonValue element : list) out.push_back(text(element, place / out.size()));
    return out;
}

std::vector<std::wstring> DescriptionReader::wides(JsonValue value, const Place& place) const {
    const JsonArray list = array(value, place);
    std::vector<std::wstring> out;
    out.reserve(sizeOf(list));
    for (const JsonValue element : list) out.push_back(wide(element, place / out.size()));
    return out;
}

const char* DescriptionReader::listPointer(ListKind list) {
    switch (list) {
        case ListKind::Systems:
            return "/systems";
        case ListKind::VelTypes:
            return "/velTypes";
        case ListKind::CGTypes:
            return "/cgTypes";
        case ListKind::VarGroups:
            return "/varGroups";
        case ListKind::ModelParameters:
            return "/modelParameters";
        case ListKind::CoderDataGroups:
            return "/coderDataGroups";
        case ListKind::Subsystems:
            return "/hierarchy/subsystems";
    }
    return "";
}

std::size_t DescriptionReader::listSize(ListKind list) const {
    std::size_t& counted = listSizes_[static_cast<std::size_t>(list)];
    if (counted) return counted - 1;
    // Walks the pointer through the document; a list (or the object holding
    // it) of the wrong type is reported where it stands.
    const std::string_view pointer = listPointer(list);
    JsonValue value = document_;
    std::size_t start = 1;
    while (start < pointer.size()) {
        const std::size_t end = std::min(pointer.find('/', start), pointer.size());
        const Place place(pointer.substr(0, start - 1));
        expectObject(value, place);
        if (!find(value, pointer.substr(start, end - start), value)) return 0;
        start = end + 1;
    }
    const std::size_t size = sizeOf(array(value, Place(pointer)));
    counted = size + 1;
    return size;
}

void DescriptionReader::checkIndex(std::int64_t index, const Place& place, const std::string& list,
                                   std::size_t size, bool noneAllowed) const {
    if (noneAllowed && index == -1) return;
    if (index < 0 || static_cast<std::uint64_t>(index) >= size)
        fail(messages::ModelDescription::DanglingReference, place,
             {"index " + std::to_string(index), list, std::to_string(size)});
}

int DescriptionReader::index(JsonValue value, const Place& place, ListKind list, bool noneAllowed) const {
    const int n = int32(value, place);
    checkIndex(n, place, listPointer(list), listSize(list), noneAllowed);
    return n;
}

void DescriptionReader::runDeferred() {
    // A check may defer further checks; run those too, in order.
    for (std::size_t i = 0; i < deferred_.size(); ++i) {
        auto check = std::move(deferred_[i]);
        check();
    }
    deferred_.clear();
}

DescriptionReader::Nesting::Nesting(DescriptionReader& reader, const Place& place) : reader_(reader) {
    if (reader_.depth_ >= kMaxDepth)
        reader_.invalid(place, "nested more than " + std::to_string(kMaxDepth) + " levels deep");
    ++reader_.depth_;
}

} // namespace VelCG::description
