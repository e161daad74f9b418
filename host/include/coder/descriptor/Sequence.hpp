#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <variant>

#include "coder/descriptor/IntegerArrayElement.hpp"
#include "coder/descriptor/Object.hpp"
#include "coder/descriptor/StringListElement.hpp"
#include "vel/HostExport.hpp"

namespace coder::descriptor {

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

// An ordered list belonging to one record: of records of kind T, or of
// values (T is IntegerArrayElement or StringListElement). append() adds at
// the end; elements read back in order by position (at) or by iteration.
// at() past the end raises "coder:descriptor:IndexOutOfRange". Appending
// writes at once and needs an open transaction; appending a record of
// another repository raises "coder:descriptor:WrongRepository".
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
    if constexpr (std::is_same_v<T, IntegerArrayElement> || std::is_same_v<T, StringListElement>) {
        ref_.appendValue(FieldValue(element.getValue()));
    } else {
        ref_.appendObject(element);
    }
}

} // namespace coder::descriptor
