#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <variant>
#include <vector>

#include "coder/descriptor/RecordKind.hpp"
#include "vel/HostExport.hpp"
#include "vel/i18n/Text.hpp"

namespace coder {

namespace detail {
class Store;
}

namespace descriptor {

using vel::i18n::ustring;

class Object;

// A field's value read generically: absent, a boolean, an integer, a real,
// a text, or the record a reference points to (an unset reference reads as
// absent).
using FieldValue = std::variant<std::monostate, bool, std::int64_t, double, ustring, Object>;

namespace detail {
struct SequenceRef;
}

// A descriptor object: a counted reference to one stored record. Copies
// refer to the same record; release() drops this reference. Dropping the
// last reference never deletes stored data. Using a released (null) object
// raises "coder:descriptor:NullObject"; using an object after its
// repository was destroyed raises "coder:descriptor:Closed".
class VELHOST_API Object {
public:
    Object() = default;

    bool isNull() const { return kind_ == nullptr; }
    explicit operator bool() const { return !isNull(); }
    void release() { *this = Object(); }

    // The record's key in its table. REQUIRES: not null.
    std::int64_t getId() const;
    // Null for a null object.
    const RecordKind* getKind() const { return kind_; }

    // Generic access by position in getKind()->fields and ->sequences, for
    // tools that walk a store without knowing its record kinds.
    FieldValue getField(std::size_t field) const;
    // Every field at once, in getKind()->fields order; also checks that the
    // record's row exists ("coder:descriptor:MissingRecord").
    std::vector<FieldValue> getFields() const;
    std::size_t getSequenceSize(std::size_t sequence) const;
    // A record of a sequence of records, or a value of a value list.
    FieldValue getSequenceElement(std::size_t sequence, std::size_t position) const;

    // The same record of the same store.
    friend bool operator==(const Object& a, const Object& b) {
        return a.store_ == b.store_ && a.kind_ == b.kind_ && a.id_ == b.id_;
    }
    friend bool operator!=(const Object& a, const Object& b) { return !(a == b); }

protected:
    Object(std::shared_ptr<coder::detail::Store> store, const RecordKind* kind, std::int64_t id)
        : store_(std::move(store)), kind_(kind), id_(id) {}

    // Typed field access for the record classes: T is the C++ type of the
    // field (see RecordMembers.hpp); an absent optional text reads as empty.
    // Raises "coder:descriptor:WrongType" when the stored value does not fit
    // the field (a damaged store) and "coder:descriptor:MissingRecord" when
    // the record's row is gone.
    template <class T>
    T value(std::size_t field) const {
        if constexpr (std::is_same_v<T, bool>)
            return boolean(field);
        else if constexpr (std::is_same_v<T, double>)
            return real(field);
        else if constexpr (std::is_same_v<T, ustring>)
            return text(field);
        else
            return static_cast<T>(integer(field));
    }
    bool has(std::size_t field) const;
    Object reference(std::size_t field) const;
    void setReference(std::size_t field, const Object& target);
    detail::SequenceRef sequence(std::size_t index) const;

    // The store, after checking that this object is not null and that its
    // repository is open.
    coder::detail::Store& checkedStore() const;

private:
    friend struct detail::SequenceRef;
    friend class Creator;
    friend class coder::detail::Store;
    template <class T>
    friend T objectAs(const Object& object);
    [[noreturn]] static void raiseWrongKind(const Object& object, const RecordKind& expected);

    bool boolean(std::size_t field) const;
    std::int64_t integer(std::size_t field) const;
    double real(std::size_t field) const;
    ustring text(std::size_t field) const;

    std::shared_ptr<coder::detail::Store> store_;
    const RecordKind* kind_ = nullptr;
    std::int64_t id_ = 0;
};

// The typed view of a generic object. REQUIRES: object is null or of T's
// kind (raises "coder:descriptor:WrongKind" otherwise).
template <class T>
T objectAs(const Object& object) {
    if (!object.isNull() && object.getKind() != &T::kind()) Object::raiseWrongKind(object, T::kind());
    T typed;
    static_cast<Object&>(typed) = object;
    return typed;
}

} // namespace descriptor
} // namespace coder
