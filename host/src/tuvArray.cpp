#include "vel/tuvArray.hpp"

#include <cmath>
#include <sstream>
#include <type_traits>

#include "tuv/Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"

const char* tuvClassName(tuvClass c) {
    switch (c) {
        case tuvClass::Logical:
            return "logical";
        case tuvClass::Int32:
            return "int32";
        case tuvClass::UInt32:
            return "uint32";
        case tuvClass::Int64:
            return "int64";
        case tuvClass::Double:
            return "double";
        case tuvClass::Char:
            return "char";
        case tuvClass::Cell:
            return "cell";
        case tuvClass::Object:
            return "handle";
        case tuvClass::Opaque:
            return "opaque";
    }
    return "unknown";
}

tuvArray::tuvArray(Private, tuvClass c, std::size_t rows, std::size_t cols, Storage data)
    : class_(c), rows_(rows), cols_(cols), data_(std::move(data)) {}

tuvArrayPtr tuvArray::empty() {
    return std::make_shared<tuvArray>(Private{}, tuvClass::Double, 0, 0, Storage{});
}
tuvArrayPtr tuvArray::logical(bool v) {
    Scalar s{};
    s.logical = static_cast<std::uint8_t>(v);
    return std::make_shared<tuvArray>(Private{}, tuvClass::Logical, s);
}
tuvArrayPtr tuvArray::int32(std::int32_t v) {
    Scalar s{};
    s.int32 = v;
    return std::make_shared<tuvArray>(Private{}, tuvClass::Int32, s);
}
tuvArrayPtr tuvArray::uint32(std::uint32_t v) {
    Scalar s{};
    s.uint32 = v;
    return std::make_shared<tuvArray>(Private{}, tuvClass::UInt32, s);
}
tuvArrayPtr tuvArray::int64(std::int64_t v) {
    Scalar s{};
    s.int64 = v;
    return std::make_shared<tuvArray>(Private{}, tuvClass::Int64, s);
}
tuvArrayPtr tuvArray::float64(double v) {
    Scalar s{};
    s.float64 = v;
    return std::make_shared<tuvArray>(Private{}, tuvClass::Double, s);
}
tuvArrayPtr tuvArray::chars(std::u16string text) {
    // Character arrays are row vectors; the empty text is 0-by-0.
    std::size_t n = text.size();
    return std::make_shared<tuvArray>(Private{}, tuvClass::Char, n ? 1 : 0, n, std::move(text));
}
tuvArrayPtr tuvArray::fromUtf8(const std::string& text) { return chars(vel::i18n::toUString(text)); }
tuvArrayPtr tuvArray::fromWide(const std::wstring& text) { return chars(vel::i18n::toUString(text)); }
tuvArrayPtr tuvArray::int32Vector(std::vector<std::int32_t> values) {
    std::size_t n = values.size();
    return std::make_shared<tuvArray>(Private{}, tuvClass::Int32, n ? 1 : 0, n, std::move(values));
}
tuvArrayPtr tuvArray::int64Vector(std::vector<std::int64_t> values) {
    std::size_t n = values.size();
    return std::make_shared<tuvArray>(Private{}, tuvClass::Int64, n ? 1 : 0, n, std::move(values));
}
tuvArrayPtr tuvArray::doubleVector(std::vector<double> values) {
    std::size_t n = values.size();
    return std::make_shared<tuvArray>(Private{}, tuvClass::Double, n ? 1 : 0, n, std::move(values));
}
tuvArrayPtr tuvArray::cell(std::size_t rows, std::size_t cols) {
    // Arrays are immutable once made, so the cells can share one empty value
    // until they are set.
    const tuvArrayPtr none = empty();
    return std::make_shared<tuvArray>(Private{}, tuvClass::Cell, rows, cols,
                                      std::vector<tuvArrayPtr>(rows * cols, none));
}
tuvArrayPtr tuvArray::objects(std::vector<vel::mi::HandleRef> handles) {
    std::size_t n = handles.size();
    return std::make_shared<tuvArray>(Private{}, tuvClass::Object, n ? 1 : 0, n, std::move(handles));
}
tuvArrayPtr tuvArray::opaque(std::string className, std::shared_ptr<const void> payload) {
    return std::make_shared<tuvArray>(Private{}, tuvClass::Opaque, 1, 1,
                                      Opaque{std::move(className), std::move(payload)});
}

std::string tuvArray::className() const {
    return class_ == tuvClass::Opaque ? std::get<Opaque>(data_).className : tuvClassName(class_);
}

bool tuvArray::isNumeric() const {
    return class_ == tuvClass::Int32 || class_ == tuvClass::UInt32 || class_ == tuvClass::Int64 ||
           class_ == tuvClass::Double;
}

template <class T>
const T& tuvArray::storage(tuvClass c) const {
    if (class_ != c) vel::diag::throwError(tuv::messages::WrongClass, {tuvClassName(c), className()});
    return std::get<T>(data_);
}

template <class T>
tuvElements<T> tuvArray::elements(tuvClass c) const {
    if (class_ != c) vel::diag::throwError(tuv::messages::WrongClass, {tuvClassName(c), className()});
    if (const auto* v = std::get_if<std::vector<T>>(&data_)) return {v->data(), v->size()};
    const T* inline_ = nullptr;
    if constexpr (std::is_same_v<T, std::uint8_t>)
        inline_ = &scalar_.logical;
    else if constexpr (std::is_same_v<T, std::int32_t>)
        inline_ = &scalar_.int32;
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        inline_ = &scalar_.uint32;
    else if constexpr (std::is_same_v<T, std::int64_t>)
        inline_ = &scalar_.int64;
    else
        inline_ = &scalar_.float64;
    return {inline_, numel()};
}

void tuvArray::requireScalar() const {
    if (!isScalar())
        vel::diag::throwError(tuv::messages::NotScalar, {std::to_string(rows_), std::to_string(cols_)});
}

bool tuvArray::logicalValue() const {
    const auto d = elements<std::uint8_t>(tuvClass::Logical);
    requireScalar();
    return d[0] != 0;
}
std::int32_t tuvArray::int32Value() const {
    const auto d = elements<std::int32_t>(tuvClass::Int32);
    requireScalar();
    return d[0];
}
std::uint32_t tuvArray::uint32Value() const {
    const auto d = elements<std::uint32_t>(tuvClass::UInt32);
    requireScalar();
    return d[0];
}
std::int64_t tuvArray::int64Value() const {
    const auto d = elements<std::int64_t>(tuvClass::Int64);
    requireScalar();
    return d[0];
}
double tuvArray::doubleValue() const {
    const auto d = elements<double>(tuvClass::Double);
    requireScalar();
    return d[0];
}

double tuvArray::numericAt(std::size_t i) const {
    if (i >= numel())
        vel::diag::throwError(tuv::messages::IndexOutOfRange,
                              {std::to_string(i + 1), std::to_string(numel())});
    switch (class_) {
        case tuvClass::Logical:
            return elements<std::uint8_t>(class_)[i];
        case tuvClass::Int32:
            return elements<std::int32_t>(class_)[i];
        case tuvClass::UInt32:
            return elements<std::uint32_t>(class_)[i];
        case tuvClass::Int64:
            return static_cast<double>(elements<std::int64_t>(class_)[i]);
        case tuvClass::Double:
            return elements<double>(class_)[i];
        default:
            vel::diag::throwError(tuv::messages::WrongClass, {"numeric", className()});
    }
}

double tuvArray::numericValue() const {
    if (!isNumeric() && class_ != tuvClass::Logical)
        vel::diag::throwError(tuv::messages::WrongClass, {"numeric", className()});
    requireScalar();
    return numericAt(0);
}

const std::u16string& tuvArray::charData() const { return storage<std::u16string>(tuvClass::Char); }
std::string tuvArray::toUtf8() const { return vel::i18n::toUtf8(charData()); }
std::wstring tuvArray::toWide() const { return vel::i18n::toWide(charData()); }

tuvElements<std::uint8_t> tuvArray::logicalData() const { return elements<std::uint8_t>(tuvClass::Logical); }
tuvElements<std::int32_t> tuvArray::int32Data() const { return elements<std::int32_t>(tuvClass::Int32); }
tuvElements<std::uint32_t> tuvArray::uint32Data() const { return elements<std::uint32_t>(tuvClass::UInt32); }
tuvElements<std::int64_t> tuvArray::int64Data() const { return elements<std::int64_t>(tuvClass::Int64); }
tuvElements<double> tuvArray::doubleData() const { return elements<double>(tuvClass::Double); }

const tuvArrayPtr& tuvArray::getCell(std::size_t i) const {
    const auto& cells = storage<std::vector<tuvArrayPtr>>(tuvClass::Cell);
    if (i >= cells.size())
        vel::diag::throwError(tuv::messages::IndexOutOfRange,
                              {std::to_string(i + 1), std::to_string(cells.size())});
    return cells[i];
}

void tuvArray::setCell(std::size_t i, tuvArrayPtr value) {
    storage<std::vector<tuvArrayPtr>>(tuvClass::Cell); // class check
    auto& cells = std::get<std::vector<tuvArrayPtr>>(data_);
    if (i >= cells.size())
        vel::diag::throwError(tuv::messages::IndexOutOfRange,
                              {std::to_string(i + 1), std::to_string(cells.size())});
    cells[i] = value ? std::move(value) : empty();
}

const std::vector<vel::mi::HandleRef>& tuvArray::handles() const {
    return storage<std::vector<vel::mi::HandleRef>>(tuvClass::Object);
}

const std::shared_ptr<const void>& tuvArray::opaquePayload() const {
    return storage<Opaque>(tuvClass::Opaque).payload;
}

std::string tuvArray::describe() const {
    std::ostringstream os;
    if (class_ == tuvClass::Char && rows_ <= 1) {
        // A message about a bad value must not fail on the value itself.
        try {
            return "'" + toUtf8() + "'";
        } catch (const vel::diag::Exception&) {
            os << rows_ << "x" << cols_ << " char array that is not valid Unicode";
            return os.str();
        }
    }
    if (isScalar() && (isNumeric() || class_ == tuvClass::Logical)) {
        os << className() << " " << numericAt(0);
        if (class_ == tuvClass::Logical) os.str(numericAt(0) != 0 ? "logical true" : "logical false");
        return os.str();
    }
    os << rows_ << "x" << cols_ << " " << className() << " array";
    return os.str();
}
