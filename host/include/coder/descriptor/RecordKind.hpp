#pragma once

#include <cstdint>
#include <vector>

#include "vel/HostExport.hpp"

namespace coder::descriptor {

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
// table per sequence. Each record class answers its own with kind().
struct RecordKind {
    const char* name;
    std::vector<FieldInfo> fields;
    std::vector<SequenceInfo> sequences;
};

// Every record kind of the format, in the order the tables are created.
VELHOST_API const std::vector<const RecordKind*>& recordKinds();

} // namespace coder::descriptor
