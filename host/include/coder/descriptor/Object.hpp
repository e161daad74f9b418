#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "vel/HostExport.hpp"
#include "vel/i18n/Text.hpp"

namespace coder {

class Repository;

namespace detail {
class Store;
}

namespace descriptor {

using vel::i18n::ustring;

struct RecordKind;

// What a field or a value list holds.
enum class FieldType { Boolean, Integer, Real, Text, Reference };

struct FieldInfo {
    const char* name;
    FieldType type;
    // Optional fields are absent until set (SQL NULL); the others start at
    // false, 0 or the empty string.
    bool optional;
    // Reference fields: the kind of record referred to.
    const RecordKind& (*target)();
    // Integer fields: the range the field's C++ type holds.
    std::int64_t min;
    std::int64_t max;
};

struct SequenceInfo {
    const char* name;
    // Sequences of records: the element kind. Value lists: null.
    const RecordKind& (*element)();
    // Value lists: FieldType::Integer (integer-array elements) or
    // FieldType::Text (string-list elements).
    FieldType valueType;
};

// One kind of record: a table named after it, a column per field, and a
// table per sequence.
struct RecordKind {
    const char* name;
    std::vector<FieldInfo> fields;
    std::vector<SequenceInfo> sequences;
};

// Every record kind of the format, in the order the tables are created.
VELHOST_API const std::vector<const RecordKind*>& recordKinds();

class Object;

// A field's value read generically: absent, a boolean, an integer, a real,
// a text, or the record a reference points to (null Object when unset).
using FieldValue = std::variant<std::monostate, bool, std::int64_t, double, ustring, Object>;

namespace detail {
// One list of one record: the owner and which of its sequences.
struct SequenceRef {
    std::shared_ptr<coder::detail::Store> store;
    const RecordKind* owner = nullptr;
    std::int64_t ownerId = 0;
    std::size_t index = 0;

    VELHOST_API std::size_t size() const;
    VELHOST_API Object objectAt(std::size_t position) const;
    VELHOST_API void appendObject(const Object& element) const;
    VELHOST_API FieldValue valueAt(std::size_t position) const;
    VELHOST_API void appendValue(const FieldValue& value) const;
};
} // namespace detail

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

    // Typed field access for the record classes. Each raises
    // "coder:descriptor:WrongType" when the stored value does not fit the
    // field (a damaged store) and "coder:descriptor:MissingRecord" when the
    // record's row is gone.
    bool boolean(std::size_t field) const;
    std::int64_t integer(std::size_t field) const;
    double real(std::size_t field) const;
    ustring text(std::size_t field) const;
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

    std::shared_ptr<coder::detail::Store> store_;
    const RecordKind* kind_ = nullptr;
    std::int64_t id_ = 0;
};

// The typed view of a generic object. REQUIRES: object is null or of T's
// kind (raises "coder:descriptor:WrongKind" otherwise).
template <class T>
T objectAs(const Object& object);

// An integer-array element: one integer of a value list (dimensions,
// enumeration values, port indices). Stored as a row of the list it is
// appended to; an element that is never appended leaves nothing behind.
class IntegerArrayElement {
public:
    explicit IntegerArrayElement(std::int64_t value = 0) : value_(value) {}
    std::int64_t getValue() const { return value_; }

private:
    std::int64_t value_;
};

// A string-list element: one text of a value list (enumeration labels, SIDs).
class StringListElement {
public:
    explicit StringListElement(ustring value = {}) : value_(std::move(value)) {}
    const ustring& getValue() const { return value_; }

private:
    ustring value_;
};

// An ordered list belonging to one record. append() adds at the end;
// elements read back in order by position (at) or by iteration. at() past
// the end raises "coder:descriptor:IndexOutOfRange". Appending writes at
// once and needs an open transaction; appending a record of another
// repository raises "coder:descriptor:WrongRepository".
template <class T>
class Sequence {
public:
    explicit Sequence(detail::SequenceRef ref) : ref_(std::move(ref)) {}

    std::size_t size() const { return ref_.size(); }
    bool empty() const { return size() == 0; }
    T at(std::size_t position) const;
    T operator[](std::size_t position) const { return at(position); }
    void append(const T& element) const;

    class iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = T;

        iterator(const Sequence* sequence, std::size_t position) : sequence_(sequence), position_(position) {}
        T operator*() const { return sequence_->at(position_); }
        iterator& operator++() {
            ++position_;
            return *this;
        }
        bool operator==(const iterator& other) const { return position_ == other.position_; }
        bool operator!=(const iterator& other) const { return position_ != other.position_; }

    private:
        const Sequence* sequence_;
        std::size_t position_;
    };
    iterator begin() const { return iterator(this, 0); }
    iterator end() const { return iterator(this, size()); }

private:
    detail::SequenceRef ref_;
};

template <class T>
T Sequence<T>::at(std::size_t position) const {
    if constexpr (std::is_same_v<T, IntegerArrayElement>) {
        return IntegerArrayElement(std::get<std::int64_t>(ref_.valueAt(position)));
    } else if constexpr (std::is_same_v<T, StringListElement>) {
        return StringListElement(std::get<ustring>(ref_.valueAt(position)));
    } else {
        return objectAs<T>(ref_.objectAt(position));
    }
}

template <class T>
void Sequence<T>::append(const T& element) const {
    if constexpr (std::is_same_v<T, IntegerArrayElement>) {
        ref_.appendValue(FieldValue(element.getValue()));
    } else if constexpr (std::is_same_v<T, StringListElement>) {
        ref_.appendValue(FieldValue(element.getValue()));
    } else {
        ref_.appendObject(element);
    }
}

// Collects a record's fields, then writes it with create(). A creator
// starts with every field at its default (absent for optional fields) and
// can create any number of records; each create needs an open transaction
// on the repository. Nothing is written when a setter or create fails.
class VELHOST_API Creator {
public:
    Creator(Repository& repository, const RecordKind& kind);
    ~Creator();
    Creator(const Creator&) = delete;
    Creator& operator=(const Creator&) = delete;

protected:
    void setBoolean(std::size_t field, bool value);
    void setInteger(std::size_t field, std::int64_t value);
    void setReal(std::size_t field, double value);
    void setText(std::size_t field, const ustring& value);
    Object create();
    // Deletes every record of the store, in the open transaction.
    void removeAllRecords();

private:
    std::shared_ptr<coder::detail::Store> store_;
    const RecordKind& kind_;
    // The value of each field, or monostate for an absent optional field;
    // texts held as UTF-8.
    std::vector<std::variant<std::monostate, std::int64_t, double, std::string>> values_;
};

template <class T>
T objectAs(const Object& object) {
    if (!object.isNull() && object.getKind() != &T::kind()) Object::raiseWrongKind(object, T::kind());
    T typed;
    static_cast<Object&>(typed) = object;
    return typed;
}

} // namespace descriptor
} // namespace coder
