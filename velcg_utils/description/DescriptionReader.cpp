#include "description/DescriptionReader.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "NearNames.hpp"
#include "description/Diagnostics.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/StoredCGModel.hpp"

namespace VelCG::description {

namespace {

const char* jsonTypeName(const Json& value) {
    switch (value.type()) {
        case Json::value_t::null:
            return "null";
        case Json::value_t::boolean:
            return "a boolean";
        case Json::value_t::number_integer:
        case Json::value_t::number_unsigned:
            return "an integer";
        case Json::value_t::number_float:
            return "a number with a fraction or exponent";
        case Json::value_t::string:
            return "a string";
        case Json::value_t::array:
            return "an array";
        case Json::value_t::object:
            return "an object";
        default:
            return "a value of another kind";
    }
}

} // namespace

DescriptionReader::DescriptionReader(const Json& document, std::string sourceName, StoredCGModel& model)
    : document_(document), sourceName_(std::move(sourceName)), model_(model), factory_(GetCGModelFactory()) {}

DescriptionReader::~DescriptionReader() = default;

void DescriptionReader::fail(const char* key, const Place& place, std::vector<std::string> more) const {
    std::vector<std::string> arguments{sourceName_, place.pointer()};
    arguments.insert(arguments.end(), std::make_move_iterator(more.begin()),
                     std::make_move_iterator(more.end()));
    raise(key, std::move(arguments));
}

void DescriptionReader::invalid(const Place& place, const std::string& reason) const {
    // The template ends the sentence; a reason taken from another message
    // may already have.
    std::string text = reason;
    if (!text.empty() && text.back() == '.') text.pop_back();
    fail(key::kInvalidValue, place, {text});
}

void DescriptionReader::wrongType(const Json& value, const Place& place, const char* expected) const {
    fail(key::kWrongType, place, {expected, jsonTypeName(value)});
}

void DescriptionReader::unknownEnumerator(const Place& place, const std::string& name,
                                          const std::vector<const char*>& names) const {
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i)
        list += (i == 0 ? "\"" : i + 1 == names.size() ? " or \"" : ", \"") + std::string(names[i]) + "\"";
    fail(key::kUnknownEnumerator, place, {name, list});
}

void DescriptionReader::expectObject(const Json& value, const Place& place) const {
    if (!value.is_object()) wrongType(value, place, "an object");
}

void DescriptionReader::expectArray(const Json& value, const Place& place) const {
    if (!value.is_array()) wrongType(value, place, "an array");
}

void DescriptionReader::checkKnown(const Json& object, const Place& place,
                                   const std::vector<std::string>& known) const {
    for (auto it = object.begin(); it != object.end(); ++it)
        if (std::find(known.begin(), known.end(), it.key()) == known.end())
            fail(key::kUnknownField, place / it.key(),
                 {it.key(), names_detail::didYouMean(it.key(), known, '"')});
}

const Json& DescriptionReader::required(const Json& object, const Place& place, const char* key) const {
    auto it = object.find(key);
    if (it == object.end()) fail(key::kMissingField, place / key);
    return *it;
}

bool DescriptionReader::boolean(const Json& value, const Place& place) const {
    if (!value.is_boolean()) wrongType(value, place, "a boolean");
    return value.get<bool>();
}

std::int64_t DescriptionReader::integer(const Json& value, const Place& place, std::int64_t low,
                                        std::int64_t high) const {
    if (!value.is_number_integer()) wrongType(value, place, "an integer");
    // Unsigned values beyond the signed range are out of every range here.
    if (value.is_number_unsigned() &&
        value.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        invalid(place, value.dump() + " is not an integer from " + std::to_string(low) + " to " +
                           std::to_string(high));
    const std::int64_t n = value.get<std::int64_t>();
    if (n < low || n > high)
        invalid(place, std::to_string(n) + " is not an integer from " + std::to_string(low) + " to " +
                           std::to_string(high));
    return n;
}

std::int32_t DescriptionReader::int32(const Json& value, const Place& place) const {
    return static_cast<std::int32_t>(integer(value, place, std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max()));
}

std::uint32_t DescriptionReader::uint32(const Json& value, const Place& place) const {
    return static_cast<std::uint32_t>(integer(value, place, 0, std::numeric_limits<std::uint32_t>::max()));
}

std::int64_t DescriptionReader::int64(const Json& value, const Place& place) const {
    return integer(value, place, std::numeric_limits<std::int64_t>::min(),
                   std::numeric_limits<std::int64_t>::max());
}

double DescriptionReader::real(const Json& value, const Place& place) const {
    if (!value.is_number()) wrongType(value, place, "a number");
    const double d = value.get<double>();
    if (!std::isfinite(d)) invalid(place, value.dump() + " is not a finite number");
    return d;
}

std::string DescriptionReader::text(const Json& value, const Place& place) const {
    if (!value.is_string()) wrongType(value, place, "a string");
    return value.get<std::string>();
}

std::wstring DescriptionReader::wide(const Json& value, const Place& place) const {
    // The parser has checked that the text is UTF-8.
    return vel::i18n::toWide(text(value, place));
}

std::vector<int> DescriptionReader::int32s(const Json& value, const Place& place) const {
    expectArray(value, place);
    std::vector<int> out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) out.push_back(int32(value[i], place / i));
    return out;
}

std::vector<std::string> DescriptionReader::texts(const Json& value, const Place& place) const {
    expectArray(value, place);
    std::vector<std::string> out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) out.push_back(text(value[i], place / i));
    return out;
}

std::vector<std::wstring> DescriptionReader::wides(const Json& value, const Place& place) const {
    expectArray(value, place);
    std::vector<std::wstring> out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) out.push_back(wide(value[i], place / i));
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
    // Walks the pointer through the document; a list (or the object holding
    // it) of the wrong type is reported where it stands.
    const std::string pointer = listPointer(list);
    const Json* value = &document_;
    Place place;
    std::size_t start = 1;
    while (start < pointer.size()) {
        const std::size_t end = std::min(pointer.find('/', start), pointer.size());
        const std::string name = pointer.substr(start, end - start);
        expectObject(*value, place);
        auto it = value->find(name);
        if (it == value->end()) return 0;
        value = &*it;
        place = place / name;
        start = end + 1;
    }
    expectArray(*value, place);
    return value->size();
}

void DescriptionReader::checkIndex(std::int64_t index, const Place& place, const std::string& list,
                                   std::size_t size, bool noneAllowed) const {
    if (noneAllowed && index == -1) return;
    if (index < 0 || static_cast<std::uint64_t>(index) >= size)
        fail(key::kDanglingReference, place, {"index " + std::to_string(index), list, std::to_string(size)});
}

int DescriptionReader::index(const Json& value, const Place& place, ListKind list, bool noneAllowed) const {
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
