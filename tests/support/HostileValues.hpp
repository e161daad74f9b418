#pragma once

// Host values of every kind a script can pass where a member expects one,
// most of them wrong for any member: each array class with edge and
// out-of-range values, empty and multi-element arrays, text with a NUL or a
// lone surrogate (text no encoding carries), cells, handles that are null,
// several or destroyed, and a value of a foreign class. The hostile-script
// test passes every one of them everywhere; the client fuzz target picks
// among them.

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"

namespace testing_support {

struct HostileValue {
    std::string label;
    tuvArrayPtr value;
};

inline tuvArrayPtr cellOf(const std::vector<tuvArrayPtr>& items) {
    auto cell = tuvArray::cell(1, items.size());
    for (std::size_t i = 0; i < items.size(); ++i) cell->setCell(i, items[i]);
    return cell;
}

// `live` names a live object, `dead` a destroyed one.
inline std::vector<HostileValue> hostileValues(const vel::mi::HandleRef& live,
                                               const vel::mi::HandleRef& dead) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const auto text = [](std::u16string s) { return tuvArray::chars(std::move(s)); };
    const std::u16string nul(u"a\0b", 3);
    const std::u16string surrogate{u'a', static_cast<char16_t>(0xD800), u'b'};
    return {
        {"logical true", tuvArray::logical(true)},
        {"logical false", tuvArray::logical(false)},
        {"int32 -1", tuvArray::int32(-1)},
        {"int32 min", tuvArray::int32(INT32_MIN)},
        {"int32 max", tuvArray::int32(INT32_MAX)},
        {"uint32 max", tuvArray::uint32(UINT32_MAX)},
        {"int64 -1", tuvArray::int64(-1)},
        {"int64 min", tuvArray::int64(INT64_MIN)},
        {"int64 max", tuvArray::int64(INT64_MAX)},
        {"int64 2^40", tuvArray::int64(std::int64_t{1} << 40)},
        {"double NaN", tuvArray::float64(nan)},
        {"double inf", tuvArray::float64(inf)},
        {"double -inf", tuvArray::float64(-inf)},
        {"double 0.5", tuvArray::float64(0.5)},
        {"double -1", tuvArray::float64(-1)},
        {"double 2^31", tuvArray::float64(2147483648.0)},
        {"double 2^32", tuvArray::float64(4294967296.0)},
        {"double 2^63", tuvArray::float64(9223372036854775808.0)},
        {"double -1e300", tuvArray::float64(-1e300)},
        {"empty", tuvArray::empty()},
        {"empty double vector", tuvArray::doubleVector({})},
        {"empty int32 vector", tuvArray::int32Vector({})},
        {"double vector", tuvArray::doubleVector({1, 2, 3})},
        {"double vector NaN 1.5", tuvArray::doubleVector({nan, 1.5})},
        {"int32 vector", tuvArray::int32Vector({-1, INT32_MAX})},
        {"int64 vector", tuvArray::int64Vector({INT64_MIN, INT64_MAX})},
        {"empty char", text(u"")},
        {"char", text(u"abc")},
        {"char with NUL", text(nul)},
        {"char with lone surrogate", text(surrogate)},
        {"long char", tuvArray::fromUtf8(std::string(1000, 'x'))},
        {"empty cell", tuvArray::cell(0, 0)},
        {"cell of text", cellOf({text(u"a"), text(u"")})},
        {"2-by-2 cell", tuvArray::cell(2, 2)},
        {"cell with NUL text", cellOf({text(nul)})},
        {"cell with lone surrogate", cellOf({text(surrogate)})},
        {"cell of number", cellOf({tuvArray::int32(1)})},
        {"cell of handle", cellOf({tuvArray::objects({live})})},
        {"nested cell", cellOf({cellOf({text(u"a")})})},
        {"empty handle array", tuvArray::objects({})},
        {"null handle", tuvArray::objects({vel::mi::HandleRef()})},
        {"two handles", tuvArray::objects({live, live})},
        {"live and destroyed handle", tuvArray::objects({live, dead})},
        {"foreign object", tuvArray::opaque("Foreign.Thing", nullptr)},
        {"opaque data interface", tuvArray::opaque("coder.DataInterface", nullptr)},
    };
}

} // namespace testing_support
