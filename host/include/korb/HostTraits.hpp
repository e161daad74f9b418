#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "korb/ValueSink.hpp"
#include "vel/HostExport.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"

namespace korb {

// Host type names under which binders deliver values.
inline constexpr const char* kLogicalScalar = "logical scalar";
inline constexpr const char* kInt32Scalar = "int32 scalar";
inline constexpr const char* kUInt32Scalar = "uint32 scalar";
inline constexpr const char* kInt64Scalar = "int64 scalar";
inline constexpr const char* kDoubleScalar = "double scalar";
inline constexpr const char* kChar = "char";
inline constexpr const char* kCharVector = "char vector";
inline constexpr const char* kInt32Vector = "int32 vector";
inline constexpr const char* kCell = "cell";
inline constexpr const char* kAny = "any";

// Conversions between native values and host arrays. Each specialization
// provides `typeName`, `toArray(value)` and, where scripts may write the
// type, `fromArray(array)`; where the value can reach a ValueSink without a
// host array, `deliver(value, sink)`. A value of the wrong class or shape raises the
// diagnostic "Korb:TypeMismatch" with the expected type name and a
// description of the value given; an array holding a destroyed object raises
// "Korb:InvalidHandle"; text that is not valid Unicode (in either direction)
// raises "i18n:InvalidText".
//
// Libraries add specializations for their own types (enumerations, lists
// with a dedicated host type name).
template <class T, class Enable = void>
struct HostTraits;

namespace detail {
// True for the identifiers that fromArray raises when a host value cannot
// become the native type: "Korb:TypeMismatch", "Korb:InvalidHandle" and
// "i18n:InvalidText".
VELHOST_API bool isConversionFailure(const std::string& identifier);

[[noreturn]] VELHOST_API void typeMismatch(const char* expected, const tuvArray& given);
VELHOST_API bool toBool(const tuvArray& a);
VELHOST_API std::int64_t toInteger(const tuvArray& a, std::int64_t lo, std::int64_t hi, const char* type);
VELHOST_API double toDouble(const tuvArray& a);
VELHOST_API std::string toNarrow(const tuvArray& a);
VELHOST_API std::wstring toWideString(const tuvArray& a);
VELHOST_API std::vector<std::int32_t> toInt32Vector(const tuvArray& a);
VELHOST_API std::vector<std::string> toNarrowList(const tuvArray& a);
VELHOST_API std::vector<std::wstring> toWideList(const tuvArray& a);
VELHOST_API tuvArrayPtr fromNarrowList(const std::vector<std::string>& v);
VELHOST_API tuvArrayPtr fromWideList(const std::vector<std::wstring>& v);
// Handles of the array, each resolved to a live object; a destroyed object
// raises "Korb:InvalidHandle".
VELHOST_API std::vector<vel::mi::Handle*> toHandles(const tuvArray& a);
[[noreturn]] VELHOST_API void notAHandle(const char* nativeType);

// The handle of a native object that must be one; null for null. A class
// that derives from the handle base unambiguously needs no search of its
// hierarchy.
template <class U>
const vel::mi::Handle* handleOf(const U* p) {
    if (!p) return nullptr;
    if constexpr (std::is_convertible_v<const U*, const vel::mi::Handle*>) {
        return p;
    } else {
        auto* h = dynamic_cast<const vel::mi::Handle*>(p);
        if (!h) notAHandle(typeid(U).name());
        return h;
    }
}

// A reference to a native object that must be a handle; null gives a null reference.
template <class U>
vel::mi::HandleRef refOf(const U* p) {
    const vel::mi::Handle* h = handleOf(p);
    return h ? h->makeRef() : vel::mi::HandleRef();
}
} // namespace detail

template <>
struct HostTraits<bool> {
    static constexpr const char* typeName = kLogicalScalar;
    static tuvArrayPtr toArray(bool v) { return tuvArray::logical(v); }
    static void deliver(bool v, ValueSink& sink) { sink.logical(v); }
    static bool fromArray(const tuvArray& a) { return detail::toBool(a); }
};

template <>
struct HostTraits<std::int32_t> {
    static constexpr const char* typeName = kInt32Scalar;
    static tuvArrayPtr toArray(std::int32_t v) { return tuvArray::int32(v); }
    static void deliver(std::int32_t v, ValueSink& sink) { sink.integer(v); }
    static std::int32_t fromArray(const tuvArray& a) {
        return static_cast<std::int32_t>(detail::toInteger(a, INT32_MIN, INT32_MAX, typeName));
    }
};

template <>
struct HostTraits<std::uint32_t> {
    static constexpr const char* typeName = kUInt32Scalar;
    static tuvArrayPtr toArray(std::uint32_t v) { return tuvArray::uint32(v); }
    static void deliver(std::uint32_t v, ValueSink& sink) { sink.integer(v); }
    static std::uint32_t fromArray(const tuvArray& a) {
        return static_cast<std::uint32_t>(detail::toInteger(a, 0, UINT32_MAX, typeName));
    }
};

template <>
struct HostTraits<std::int64_t> {
    static constexpr const char* typeName = kInt64Scalar;
    static tuvArrayPtr toArray(std::int64_t v) { return tuvArray::int64(v); }
    static void deliver(std::int64_t v, ValueSink& sink) { sink.integer(v); }
    static std::int64_t fromArray(const tuvArray& a) {
        return detail::toInteger(a, INT64_MIN, INT64_MAX, typeName);
    }
};

template <>
struct HostTraits<double> {
    static constexpr const char* typeName = kDoubleScalar;
    static tuvArrayPtr toArray(double v) { return tuvArray::float64(v); }
    static void deliver(double v, ValueSink& sink) { sink.real(v); }
    static double fromArray(const tuvArray& a) { return detail::toDouble(a); }
};

template <>
struct HostTraits<std::string> {
    static constexpr const char* typeName = kChar;
    static tuvArrayPtr toArray(const std::string& v) { return tuvArray::fromUtf8(v); }
    static void deliver(const std::string& v, ValueSink& sink) { sink.text(std::string_view(v)); }
    static std::string fromArray(const tuvArray& a) { return detail::toNarrow(a); }
};

template <>
struct HostTraits<const char*> {
    static constexpr const char* typeName = kChar;
    static tuvArrayPtr toArray(const char* v) { return tuvArray::fromUtf8(v ? v : ""); }
    static void deliver(const char* v, ValueSink& sink) { sink.text(std::string_view(v ? v : "")); }
};

template <>
struct HostTraits<std::wstring> {
    static constexpr const char* typeName = kChar;
    static tuvArrayPtr toArray(const std::wstring& v) { return tuvArray::fromWide(v); }
    static void deliver(const std::wstring& v, ValueSink& sink) { sink.text(std::wstring_view(v)); }
    static std::wstring fromArray(const tuvArray& a) { return detail::toWideString(a); }
};

template <>
struct HostTraits<std::vector<std::int32_t>> {
    static constexpr const char* typeName = kInt32Vector;
    static tuvArrayPtr toArray(const std::vector<std::int32_t>& v) { return tuvArray::int32Vector(v); }
    static std::vector<std::int32_t> fromArray(const tuvArray& a) { return detail::toInt32Vector(a); }
};

template <>
struct HostTraits<std::vector<std::string>> {
    static constexpr const char* typeName = kCell;
    static tuvArrayPtr toArray(const std::vector<std::string>& v) { return detail::fromNarrowList(v); }
    static std::vector<std::string> fromArray(const tuvArray& a) { return detail::toNarrowList(a); }
};

template <>
struct HostTraits<std::vector<std::wstring>> {
    static constexpr const char* typeName = kCell;
    static tuvArrayPtr toArray(const std::vector<std::wstring>& v) { return detail::fromWideList(v); }
    static std::vector<std::wstring> fromArray(const tuvArray& a) { return detail::toWideList(a); }
};

// Host arrays pass through unchanged; a null array reads as the empty value.
template <>
struct HostTraits<tuvArrayPtr> {
    static constexpr const char* typeName = kAny;
    static tuvArrayPtr toArray(const tuvArrayPtr& v) { return v ? v : tuvArray::empty(); }
    static tuvArrayPtr fromArray(const tuvArray& a) { return std::make_shared<tuvArray>(a); }
};

template <>
struct HostTraits<tuvArray> {
    static constexpr const char* typeName = kAny;
    static tuvArrayPtr toArray(const tuvArray& v) { return std::make_shared<tuvArray>(v); }
    static const tuvArray& fromArray(const tuvArray& a) { return a; }
};

// One object of a polymorphic native class that is also a handle: a 1-by-1
// array of handles, or the empty value for a null pointer.
template <class T>
struct HostTraits<T*, std::enable_if_t<std::is_polymorphic_v<T>>> {
    using Object = std::remove_const_t<T>;
    static constexpr const char* typeName = kAny;
    static tuvArrayPtr toArray(const Object* p) {
        if (!p) return tuvArray::empty();
        return tuvArray::objects({detail::refOf(p)});
    }
    static void deliver(const Object* p, ValueSink& sink) { sink.object(detail::handleOf(p)); }
    static T* fromArray(const tuvArray& a) {
        auto handles = detail::toHandles(a);
        if (handles.empty()) return nullptr;
        if (handles.size() != 1) detail::typeMismatch("scalar object", a);
        auto* obj = dynamic_cast<Object*>(handles.front());
        if (!obj) detail::typeMismatch(typeName, a);
        return obj;
    }
};

// A list of objects: a 1-by-N array of handles.
template <class T>
struct HostTraits<std::vector<T*>, std::enable_if_t<std::is_polymorphic_v<T>>> {
    using Object = std::remove_const_t<T>;
    static constexpr const char* typeName = kAny;
    static tuvArrayPtr toArray(const std::vector<T*>& v) {
        std::vector<vel::mi::HandleRef> refs;
        refs.reserve(v.size());
        for (const Object* p : v) refs.push_back(detail::refOf(p));
        return tuvArray::objects(std::move(refs));
    }
    static void deliver(const std::vector<T*>& v, ValueSink& sink) {
        sink.objects(v.size());
        for (const Object* p : v) sink.object(detail::handleOf(p));
    }
    static std::vector<T*> fromArray(const tuvArray& a) {
        std::vector<T*> out;
        for (vel::mi::Handle* h : detail::toHandles(a)) {
            auto* obj = dynamic_cast<Object*>(h);
            if (!obj) detail::typeMismatch(typeName, a);
            out.push_back(obj);
        }
        return out;
    }
};

// Read-only enumerations delivered as the enumerator's name. A library
// specializes HostTraits<E> by deriving from this with its name function.
template <class E, const char* (*NameOf)(E)>
struct EnumNameTraits {
    static constexpr const char* typeName = kCharVector;
    static tuvArrayPtr toArray(E v) { return tuvArray::fromUtf8(NameOf(v)); }
    static void deliver(E v, ValueSink& sink) { sink.text(std::string_view(NameOf(v))); }
};

} // namespace korb
