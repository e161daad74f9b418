#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "korb/HostTraits.hpp"
#include "korb/Value.hpp"
#include "korb/ValueSink.hpp"
#include "vel/HostExport.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"

namespace korb {

namespace detail {
[[noreturn]] VELHOST_API void wrongClass(const vel::mi::Handle& object, const char* nativeType);
[[noreturn]] VELHOST_API void wrongArgumentCount(std::size_t expected, std::size_t given);
// Called from a catch handler while argument `position` (0-based) was being
// converted: a conversion failure (see isConversionFailure) becomes
// "Korb:InvalidArgument"; any other exception propagates unchanged.
[[noreturn]] VELHOST_API void invalidArgument(std::size_t position);

// Argument i converted by HostTraits<V>, reporting a failure with its position.
template <class V>
decltype(auto) argumentAt(const std::vector<tuvArrayPtr>& args, std::size_t i) {
    try {
        return HostTraits<V>::fromArray(*args[i]);
    } catch (...) {
        invalidArgument(i);
    }
}
} // namespace detail

// Resolves a handle to the native class a binder is bound to. The dynamic
// cast performs the pointer adjustment that multiple inheritance needs (a
// class deriving from an element class and from the handle base).
template <class T, class = void>
inline constexpr bool kIsPlainHandle = false;
template <class T>
inline constexpr bool
    kIsPlainHandle<T, std::void_t<decltype(static_cast<T*>(std::declval<vel::mi::Handle*>()))>> = true;

template <class T>
T& nativeObject(vel::mi::Handle& object) {
    // An object of exactly T needs no search of its class hierarchy when T
    // reaches its handle base without virtual or ambiguous inheritance.
    if constexpr (kIsPlainHandle<T>)
        if (typeid(object) == typeid(T)) return static_cast<T&>(object);
    auto* p = dynamic_cast<T*>(&object);
    if (!p) detail::wrongClass(object, typeid(T).name());
    return *p;
}

// True when a native value of type R reaches the host as one object (a
// 1-by-1 array of handles, or the empty value for null) rather than a list.
template <class R>
inline constexpr bool kIsOneObject = std::is_pointer_v<R>&& std::is_polymorphic_v<std::remove_pointer_t<R>>;

// Reads one property of a native object.
class VELHOST_API GetterBinder {
public:
    explicit GetterBinder(std::string hostType, bool deliversOneObject = false)
        : hostType_(std::move(hostType)), oneObject_(deliversOneObject) {}
    virtual ~GetterBinder();
    const std::string& hostTypeName() const { return hostType_; }
    // True when the value is a single object (or empty for none); an array
    // of handles from any other getter is a list, whatever its length.
    bool deliversOneObject() const { return oneObject_; }
    virtual tuvArrayPtr getArray(vel::mi::Handle& object) const = 0;
    Value getValue(vel::mi::Handle& object) const { return {hostType_, getArray(object)}; }
    // The value as a sink receives it: without a host array where the
    // native type allows (see HostTraits::deliver), else getArray's.
    virtual void read(vel::mi::Handle& object, ValueSink& sink) const;

private:
    std::string hostType_;
    bool oneObject_;
};

// Writes one property of a native object from a host value.
class VELHOST_API SetterBinder {
public:
    explicit SetterBinder(std::string hostType) : hostType_(std::move(hostType)) {}
    virtual ~SetterBinder();
    const std::string& hostTypeName() const { return hostType_; }
    virtual void set(vel::mi::Handle& object, const tuvArray& value) const = 0;

private:
    std::string hostType_;
};

// Calls one native member function with host values as arguments.
class VELHOST_API MethodBinder {
public:
    // The host type names of the arguments, in order, and of the result
    // (empty for a method that returns nothing).
    MethodBinder(std::vector<std::string> argumentTypes, std::string resultType,
                 bool returnsOneObject = false, bool readsOnly = false)
        : argumentTypes_(std::move(argumentTypes)),
          resultType_(std::move(resultType)),
          oneObject_(returnsOneObject),
          readsOnly_(readsOnly) {}
    virtual ~MethodBinder();
    std::size_t arity() const { return argumentTypes_.size(); }
    const std::vector<std::string>& argumentTypes() const { return argumentTypes_; }
    const std::string& resultType() const { return resultType_; }
    // As GetterBinder::deliversOneObject, for the result.
    bool returnsOneObject() const { return oneObject_; }
    // True when the method only reads its object, like a property read: it
    // is bound to a const member function, or to a callable that takes the
    // object as const.
    bool readsOnly() const { return readsOnly_; }
    // Raises "Korb:WrongNumberOfArguments" (arguments: expected, given)
    // unless args has arity() elements, and "Korb:InvalidArgument"
    // (arguments: 1-based position, the message of the conversion failure)
    // when an argument is null or cannot be converted to its native type.
    // Both are raised before the native function runs; what the native
    // function raises propagates unchanged.
    tuvArrayPtr call(vel::mi::Handle& object, const std::vector<tuvArrayPtr>& args) const;

protected:
    virtual tuvArrayPtr invoke(vel::mi::Handle& object, const std::vector<tuvArrayPtr>& args) const = 0;

private:
    std::vector<std::string> argumentTypes_;
    std::string resultType_;
    bool oneObject_;
    bool readsOnly_;
};

namespace detail {

template <class R, class = void>
inline constexpr bool kDelivers = false;
template <class R>
inline constexpr bool kDelivers<
    R, std::void_t<decltype(HostTraits<R>::deliver(std::declval<const R&>(), std::declval<ValueSink&>()))>> =
    true;

template <class T, class R, class F>
class FunctionGetter final : public GetterBinder {
public:
    explicit FunctionGetter(F fn)
        : GetterBinder(HostTraits<R>::typeName, kIsOneObject<R>), fn_(std::move(fn)) {}
    tuvArrayPtr getArray(vel::mi::Handle& object) const override {
        return HostTraits<R>::toArray(fn_(nativeObject<T>(object)));
    }
    void read(vel::mi::Handle& object, ValueSink& sink) const override {
        if constexpr (kDelivers<R>)
            HostTraits<R>::deliver(fn_(nativeObject<T>(object)), sink);
        else
            sink.array(getArray(object));
    }

private:
    F fn_;
};

template <class T, class V, class F>
class FunctionSetter final : public SetterBinder {
public:
    explicit FunctionSetter(F fn) : SetterBinder(HostTraits<V>::typeName), fn_(std::move(fn)) {}
    void set(vel::mi::Handle& object, const tuvArray& value) const override {
        T& native = nativeObject<T>(object);
        fn_(native, HostTraits<V>::fromArray(value));
    }

private:
    F fn_;
};

template <class T, class R, class F, class... A>
class FunctionMethod final : public MethodBinder {
public:
    FunctionMethod(F fn, bool readsOnly)
        : MethodBinder({HostTraits<std::decay_t<A>>::typeName...}, resultTypeName(),
                       kIsOneObject<std::decay_t<R>>, readsOnly),
          fn_(std::move(fn)) {}

protected:
    tuvArrayPtr invoke(vel::mi::Handle& object, const std::vector<tuvArrayPtr>& args) const override {
        return invokeWith(nativeObject<T>(object), args, std::index_sequence_for<A...>{});
    }

private:
    static std::string resultTypeName() {
        if constexpr (std::is_void_v<R>)
            return {};
        else
            return HostTraits<std::decay_t<R>>::typeName;
    }

    template <std::size_t... I>
    tuvArrayPtr invokeWith(T& native, const std::vector<tuvArrayPtr>& args, std::index_sequence<I...>) const {
        // Convert every argument before the call so that a bad argument
        // leaves the object untouched.
        std::tuple<std::decay_t<A>...> converted{detail::argumentAt<std::decay_t<A>>(args, I)...};
        if constexpr (std::is_void_v<R>) {
            fn_(native, std::get<I>(converted)...);
            return tuvArray::empty();
        } else {
            return HostTraits<std::decay_t<R>>::toArray(fn_(native, std::get<I>(converted)...));
        }
    }

    F fn_;
};

} // namespace detail

// Getter binders: a const or non-const member function taking nothing, or a
// callable taking the native object.
template <class T, class R>
std::unique_ptr<GetterBinder> getter(R (T::*fn)() const) {
    auto call = [fn](T& o) -> decltype(auto) { return (o.*fn)(); };
    return std::make_unique<detail::FunctionGetter<T, std::decay_t<R>, decltype(call)>>(call);
}

template <class T, class R>
std::unique_ptr<GetterBinder> getter(R (T::*fn)()) {
    auto call = [fn](T& o) -> decltype(auto) { return (o.*fn)(); };
    return std::make_unique<detail::FunctionGetter<T, std::decay_t<R>, decltype(call)>>(call);
}

template <class T, class F>
std::unique_ptr<GetterBinder> getterFn(F fn) {
    using R = std::decay_t<std::invoke_result_t<F&, T&>>;
    return std::make_unique<detail::FunctionGetter<T, R, F>>(std::move(fn));
}

// Setter binders: a member function taking the value, or a callable taking
// the native object and the value.
template <class T, class A, class Ret>
std::unique_ptr<SetterBinder> setter(Ret (T::*fn)(A)) {
    using V = std::decay_t<A>;
    auto call = [fn](T& o, const V& v) { (o.*fn)(v); };
    return std::make_unique<detail::FunctionSetter<T, V, decltype(call)>>(call);
}

template <class T, class V, class F>
std::unique_ptr<SetterBinder> setterFn(F fn) {
    return std::make_unique<detail::FunctionSetter<T, V, F>>(std::move(fn));
}

// Method binders: a member function with any number of arguments; each
// argument is converted from its host value by HostTraits. A const member
// function only reads (MethodBinder::readsOnly).
template <class T, class R, class... A>
std::unique_ptr<MethodBinder> method(R (T::*fn)(A...) const) {
    auto call = [fn](T& o, const std::decay_t<A>&... a) -> decltype(auto) { return (o.*fn)(a...); };
    return std::make_unique<detail::FunctionMethod<T, R, decltype(call), A...>>(call, true);
}

template <class T, class R, class... A>
std::unique_ptr<MethodBinder> method(R (T::*fn)(A...)) {
    auto call = [fn](T& o, const std::decay_t<A>&... a) -> decltype(auto) { return (o.*fn)(a...); };
    return std::make_unique<detail::FunctionMethod<T, R, decltype(call), A...>>(call, false);
}

// A method implemented by a callable taking the native object and the
// arguments A...; R is what the callable returns. It only reads when the
// callable takes the object as const.
template <class T, class R, class... A, class F>
std::unique_ptr<MethodBinder> methodFn(F fn) {
    constexpr bool readsOnly = std::is_invocable_v<const F&, const T&, const std::decay_t<A>&...>;
    auto call = [fn](T& o, const std::decay_t<A>&... a) -> decltype(auto) { return fn(o, a...); };
    return std::make_unique<detail::FunctionMethod<T, R, decltype(call), A...>>(call, readsOnly);
}

} // namespace korb
