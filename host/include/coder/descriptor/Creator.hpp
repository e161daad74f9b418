#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "coder/descriptor/Object.hpp"
#include "coder/descriptor/RecordKind.hpp"
#include "vel/HostExport.hpp"

namespace coder {

class Repository;

namespace descriptor {

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
    // Sets a field of the C++ type T (see RecordMembers.hpp). An integer
    // outside the field's range, or a NaN, raises
    // "coder:descriptor:OutOfRange".
    template <class T>
    void setValue(std::size_t field, const T& value) {
        if constexpr (std::is_same_v<T, bool>)
            setBoolean(field, value);
        else if constexpr (std::is_same_v<T, double>)
            setReal(field, value);
        else if constexpr (std::is_same_v<T, ustring>)
            setText(field, value);
        else
            setInteger(field, value);
    }
    Object create();
    // Deletes every record of the store, in the open transaction.
    void removeAllRecords();

private:
    void setBoolean(std::size_t field, bool value);
    void setInteger(std::size_t field, std::int64_t value);
    void setReal(std::size_t field, double value);
    void setText(std::size_t field, const ustring& value);

    std::shared_ptr<coder::detail::Store> store_;
    const RecordKind& kind_;
    // The value of each field, or monostate for an absent optional field;
    // texts held as UTF-8.
    std::vector<std::variant<std::monostate, std::int64_t, double, std::string>> values_;
};

} // namespace descriptor
} // namespace coder
