#include "korb/HostTraits.hpp"

#include <cmath>

#include "korb/Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Messages.hpp"

namespace korb::detail {

bool isConversionFailure(const std::string& identifier) {
    return identifier == messages::TypeMismatch || identifier == messages::InvalidHandle ||
           identifier == vel::i18n::messages::InvalidText;
}

void typeMismatch(const char* expected, const tuvArray& given) {
    vel::diag::throwError(messages::TypeMismatch, {expected, given.describe()});
}

void notAHandle(const char* nativeType) { vel::diag::throwError(messages::NotAHandle, {nativeType}); }

bool toBool(const tuvArray& a) {
    if (!a.isScalar()) typeMismatch(kLogicalScalar, a);
    if (a.classId() == tuvClass::Logical) return a.logicalValue();
    if (a.isNumeric()) {
        double v = a.numericValue();
        if (v == 0.0 || v == 1.0) return v != 0.0;
    }
    typeMismatch(kLogicalScalar, a);
}

std::int64_t toInteger(const tuvArray& a, std::int64_t lo, std::int64_t hi, const char* type) {
    if (!a.isScalar() || !a.isNumeric()) typeMismatch(type, a);
    if (a.classId() == tuvClass::Int64) {
        std::int64_t v = a.int64Value();
        if (v < lo || v > hi) typeMismatch(type, a);
        return v;
    }
    double v = a.numericValue();
    // Doubles beyond 2^63 cannot be range-checked exactly against int64;
    // compare in long double where the bounds are exact.
    if (std::trunc(v) != v || static_cast<long double>(v) < static_cast<long double>(lo) ||
        static_cast<long double>(v) > static_cast<long double>(hi))
        typeMismatch(type, a);
    return static_cast<std::int64_t>(v);
}

double toDouble(const tuvArray& a) {
    if (!a.isScalar() || !a.isNumeric()) typeMismatch(kDoubleScalar, a);
    if (a.classId() == tuvClass::Int64) return static_cast<double>(a.int64Value());
    return a.numericValue();
}

namespace {
bool isText(const tuvArray& a) { return a.classId() == tuvClass::Char && a.rows() <= 1; }
bool isEmptyValue(const tuvArray& a) { return a.isEmpty() && a.classId() == tuvClass::Double; }
} // namespace

std::string toNarrow(const tuvArray& a) {
    if (isEmptyValue(a)) return {};
    if (!isText(a)) typeMismatch(kChar, a);
    return a.toUtf8();
}

std::wstring toWideString(const tuvArray& a) {
    if (isEmptyValue(a)) return {};
    if (!isText(a)) typeMismatch(kChar, a);
    return a.toWide();
}

std::vector<std::int32_t> toInt32Vector(const tuvArray& a) {
    if (a.isEmpty() && (a.isNumeric() || a.classId() == tuvClass::Cell)) return {};
    if (!a.isNumeric() || (a.rows() != 1 && a.cols() != 1)) typeMismatch(kInt32Vector, a);
    if (a.classId() == tuvClass::Int32) return a.int32Data();
    std::vector<std::int32_t> out;
    out.reserve(a.numel());
    for (std::size_t i = 0; i < a.numel(); ++i) {
        double v = a.numericAt(i);
        if (std::trunc(v) != v || v < INT32_MIN || v > INT32_MAX) typeMismatch(kInt32Vector, a);
        out.push_back(static_cast<std::int32_t>(v));
    }
    return out;
}

template <class S, class F>
static std::vector<S> toList(const tuvArray& a, F convert) {
    std::vector<S> out;
    if (isEmptyValue(a)) return out;
    if (a.classId() != tuvClass::Cell) typeMismatch(kCell, a);
    out.reserve(a.numel());
    for (std::size_t i = 0; i < a.numel(); ++i) {
        const tuvArray& c = *a.getCell(i);
        if (!isText(c) && !isEmptyValue(c)) typeMismatch("cell array of char", a);
        out.push_back(convert(c));
    }
    return out;
}

std::vector<std::string> toNarrowList(const tuvArray& a) { return toList<std::string>(a, toNarrow); }
std::vector<std::wstring> toWideList(const tuvArray& a) { return toList<std::wstring>(a, toWideString); }

tuvArrayPtr fromNarrowList(const std::vector<std::string>& v) {
    auto cell = tuvArray::cell(v.size(), 1);
    for (std::size_t i = 0; i < v.size(); ++i) cell->setCell(i, tuvArray::fromUtf8(v[i]));
    return cell;
}

tuvArrayPtr fromWideList(const std::vector<std::wstring>& v) {
    auto cell = tuvArray::cell(v.size(), 1);
    for (std::size_t i = 0; i < v.size(); ++i) cell->setCell(i, tuvArray::fromWide(v[i]));
    return cell;
}

std::vector<vel::mi::Handle*> toHandles(const tuvArray& a) {
    if (isEmptyValue(a)) return {};
    if (a.classId() != tuvClass::Object) typeMismatch(kAny, a);
    std::vector<vel::mi::Handle*> out;
    out.reserve(a.numel());
    for (const auto& ref : a.handles()) {
        vel::mi::Handle* h = ref.get();
        if (!h) vel::diag::throwError(messages::InvalidHandle, {});
        out.push_back(h);
    }
    return out;
}

} // namespace korb::detail
