#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "vel/HostExport.hpp"
#include "vel/mi/Handle.hpp"

class tuvArray;

// A read-only view of the elements of a numeric or logical array,
// column-major. Compares equal to a vector holding the same elements and
// converts to one.
template <class T>
class tuvElements {
public:
    using value_type = T;
    using iterator = const T*;
    using const_iterator = const T*;

    tuvElements(const T* data, std::size_t size) : data_(data), size_(size) {}

    const T* data() const { return data_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }
    const T& operator[](std::size_t i) const { return data_[i]; }
    const T& front() const { return data_[0]; }
    operator std::vector<T>() const { return std::vector<T>(begin(), end()); }

    friend bool operator==(const tuvElements& a, const tuvElements& b) {
        return a.size_ == b.size_ && std::equal(a.begin(), a.end(), b.begin());
    }
    friend bool operator==(const tuvElements& a, const std::vector<T>& b) {
        return a == tuvElements(b.data(), b.size());
    }
    friend bool operator==(const std::vector<T>& a, const tuvElements& b) { return b == a; }
    friend bool operator!=(const tuvElements& a, const tuvElements& b) { return !(a == b); }
    friend bool operator!=(const tuvElements& a, const std::vector<T>& b) { return !(a == b); }
    friend bool operator!=(const std::vector<T>& a, const tuvElements& b) { return !(b == a); }

private:
    const T* data_;
    std::size_t size_;
};

// Shared owning handle of a host array. Host arrays are immutable once they
// have been handed out, except for the cells of a cell array under
// construction.
using tuvArrayPtr = std::shared_ptr<tuvArray>;

enum class tuvClass {
    Logical,
    Int32,
    UInt32,
    Int64,
    Double,
    Char,
    Cell,
    Object, // array of object handles
    Opaque, // a foreign object of a named host class, held by reference
};

VELHOST_API const char* tuvClassName(tuvClass c);

// The host's array value: a rows-by-cols matrix of one class. Character
// arrays hold UTF-16 text (the host's Unicode strings); a 0-by-0 double array
// is the empty value.
class VELHOST_API tuvArray {
    struct Private {
        explicit Private() = default;
    };

public:
    static tuvArrayPtr empty();
    static tuvArrayPtr logical(bool value);
    static tuvArrayPtr int32(std::int32_t value);
    static tuvArrayPtr uint32(std::uint32_t value);
    static tuvArrayPtr int64(std::int64_t value);
    static tuvArrayPtr float64(double value);
    static tuvArrayPtr chars(std::u16string text);
    static tuvArrayPtr fromUtf8(const std::string& text);
    static tuvArrayPtr fromWide(const std::wstring& text);
    static tuvArrayPtr int32Vector(std::vector<std::int32_t> values);    // 1-by-N
    static tuvArrayPtr int64Vector(std::vector<std::int64_t> values);    // 1-by-N
    static tuvArrayPtr doubleVector(std::vector<double> values);         // 1-by-N
    static tuvArrayPtr cell(std::size_t rows, std::size_t cols = 1);     // cells hold empty()
    static tuvArrayPtr objects(std::vector<vel::mi::HandleRef> handles); // 1-by-N
    // A foreign object; `payload` keeps it alive as long as the array lives.
    static tuvArrayPtr opaque(std::string className, std::shared_ptr<const void> payload);

    tuvClass classId() const { return class_; }
    // "logical", "int32", ..., "char", "cell", "handle", or the foreign class name.
    std::string className() const;
    std::size_t rows() const { return rows_; }
    std::size_t cols() const { return cols_; }
    std::size_t numel() const { return rows_ * cols_; }
    bool isEmpty() const { return numel() == 0; }
    bool isScalar() const { return numel() == 1; }
    bool isNumeric() const;

    // Typed reads. Each raises the diagnostic "tuv:WrongClass" when the array
    // is of another class and "tuv:NotScalar" when a scalar is asked of a
    // non-scalar array.
    bool logicalValue() const;
    std::int32_t int32Value() const;
    std::uint32_t uint32Value() const;
    std::int64_t int64Value() const;
    double doubleValue() const;
    // Any real numeric or logical scalar, as a double.
    double numericValue() const;
    // Element i (column-major) of a numeric or logical array, as a double.
    double numericAt(std::size_t i) const;
    const std::u16string& charData() const;
    std::string toUtf8() const;
    std::wstring toWide() const;
    // The elements of a numeric or logical array of that class, exactly as
    // stored (column-major); "tuv:WrongClass" for another class. The view
    // lives as long as the array.
    tuvElements<std::uint8_t> logicalData() const;
    tuvElements<std::int32_t> int32Data() const;
    tuvElements<std::uint32_t> uint32Data() const;
    tuvElements<std::int64_t> int64Data() const;
    tuvElements<double> doubleData() const;

    // Cells, column-major. Raise "tuv:IndexOutOfRange" past the end.
    const tuvArrayPtr& getCell(std::size_t i) const;
    void setCell(std::size_t i, tuvArrayPtr value);

    const std::vector<vel::mi::HandleRef>& handles() const;
    const std::shared_ptr<const void>& opaquePayload() const;

    // A short human-readable rendering, for messages and tools. Never raises:
    // text that is not valid Unicode is described, not quoted.
    std::string describe() const;

private:
    struct Opaque {
        std::string className;
        std::shared_ptr<const void> payload;
    };
    // Numeric and logical arrays of at most one element keep it in scalar_
    // (data_ then holds std::monostate), so that a scalar is one allocation.
    union Scalar {
        std::uint8_t logical;
        std::int32_t int32;
        std::uint32_t uint32;
        std::int64_t int64;
        double float64;
    };
    using Storage =
        std::variant<std::monostate, std::vector<std::uint8_t>, std::vector<std::int32_t>,
                     std::vector<std::uint32_t>, std::vector<std::int64_t>, std::vector<double>,
                     std::u16string, std::vector<tuvArrayPtr>, std::vector<vel::mi::HandleRef>, Opaque>;

public:
    // For the factories only (make_shared needs a public constructor).
    tuvArray(Private, tuvClass c, std::size_t rows, std::size_t cols, Storage data);
    tuvArray(Private, tuvClass c, Scalar value) : class_(c), rows_(1), cols_(1), scalar_(value) {}

private:
    template <class T>
    const T& storage(tuvClass c) const;
    template <class T>
    tuvElements<T> elements(tuvClass c) const;
    void requireScalar() const;

    tuvClass class_;
    std::size_t rows_;
    std::size_t cols_;
    Scalar scalar_{};
    Storage data_;
};
