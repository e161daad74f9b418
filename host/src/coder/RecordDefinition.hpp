#pragma once

// Defines what coder/descriptor/RecordMembers.hpp declares, from the same
// list of fields and sequences: the record's table (kind()), its getters,
// and its creator's constructor and setters. Used once per record kind, in
// the kind's source file, inside namespace coder::descriptor:
//
//   CODER_DESCRIPTOR_DEFINE_RECORD(Port, CODER_DESCRIPTOR_PORT)
//   CODER_DESCRIPTOR_DEFINE_CREATE(Port) // unless createPort does more
//
// An entry's place in the list is its index in kind().fields or
// kind().sequences, and so the place of its column: changing a list changes
// the file format, which StoreSchema.cpp checks when it is compiled.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "coder/Repository.hpp"
#include "coder/descriptor/RecordMembers.hpp"

namespace coder::descriptor::detail {

template <class T>
constexpr FieldInfo valueField(const char* name, bool optional) {
    static_assert(std::is_same_v<T, bool> || std::is_same_v<T, int32_t> || std::is_same_v<T, uint32_t> ||
                      std::is_same_v<T, int64_t> || std::is_same_v<T, double> || std::is_same_v<T, ustring>,
                  "a field holds bool, int32_t, uint32_t, int64_t, double or ustring");
    if constexpr (std::is_same_v<T, bool>)
        return {name, FieldType::Boolean, optional, nullptr, 0, 0};
    else if constexpr (std::is_same_v<T, double>)
        return {name, FieldType::Real, optional, nullptr, 0, 0};
    else if constexpr (std::is_same_v<T, ustring>)
        return {name, FieldType::Text, optional, nullptr, 0, 0};
    else
        return {name,
                FieldType::Integer,
                optional,
                nullptr,
                std::numeric_limits<T>::min(),
                std::numeric_limits<T>::max()};
}

// Only a text column may be NULL; the others hold a default.
template <class T>
constexpr FieldInfo optionalField(const char* name) {
    static_assert(std::is_same_v<T, ustring>, "an optional field is a text");
    return valueField<T>(name, true);
}

template <class K>
FieldInfo referenceField(const char* name) {
    return {name, FieldType::Reference, true, &K::kind, 0, 0};
}

template <class E>
SequenceInfo sequenceOf(const char* name) {
    if constexpr (std::is_same_v<E, IntegerArrayElement>)
        return {name, nullptr, FieldType::Integer};
    else if constexpr (std::is_same_v<E, StringListElement>)
        return {name, nullptr, FieldType::Text};
    else
        return {name, &E::kind, FieldType::Reference};
}

} // namespace coder::descriptor::detail

// Field and sequence indices (kName, kNameList), the kind's table, the
// record's getters, the creator's constructor and setters.
#define CODER_DESCRIPTOR_DEFINE_RECORD(Kind, LIST)                                                          \
    namespace {                                                                                             \
    using Record = Kind;                                                                                    \
    using RecordCreator = Kind##Creator;                                                                    \
    enum Field : std::size_t {                                                                              \
        LIST(CODER_DESCRIPTOR_INDEX, CODER_DESCRIPTOR_INDEX, CODER_DESCRIPTOR_INDEX, CODER_DESCRIPTOR_SKIP) \
    };                                                                                                      \
    enum List : std::size_t {                                                                               \
        LIST(CODER_DESCRIPTOR_SKIP, CODER_DESCRIPTOR_SKIP, CODER_DESCRIPTOR_SKIP,                           \
             CODER_DESCRIPTOR_LIST_INDEX)                                                                   \
    };                                                                                                      \
    }                                                                                                       \
    const RecordKind& Kind::kind() {                                                                        \
        static const RecordKind kind{                                                                       \
            #Kind,                                                                                          \
            {LIST(CODER_DESCRIPTOR_VALUE_INFO, CODER_DESCRIPTOR_OPTIONAL_INFO,                              \
                  CODER_DESCRIPTOR_REFERENCE_INFO, CODER_DESCRIPTOR_SKIP)},                                 \
            {LIST(CODER_DESCRIPTOR_SKIP, CODER_DESCRIPTOR_SKIP, CODER_DESCRIPTOR_SKIP,                      \
                  CODER_DESCRIPTOR_SEQUENCE_INFO)},                                                         \
        };                                                                                                  \
        return kind;                                                                                        \
    }                                                                                                       \
    LIST(CODER_DESCRIPTOR_DEFINE_GET, CODER_DESCRIPTOR_DEFINE_GET_OPTIONAL,                                 \
         CODER_DESCRIPTOR_DEFINE_REFERENCE, CODER_DESCRIPTOR_DEFINE_SEQUENCE)                               \
    Kind##Creator::Kind##Creator(Repository& repository) : Creator(repository, Kind::kind()) {}             \
    LIST(CODER_DESCRIPTOR_DEFINE_SET, CODER_DESCRIPTOR_DEFINE_SET, CODER_DESCRIPTOR_SKIP,                   \
         CODER_DESCRIPTOR_SKIP)

#define CODER_DESCRIPTOR_DEFINE_CREATE(Kind) \
    Kind Kind##Creator::create##Kind() { return objectAs<Kind>(create()); }

#define CODER_DESCRIPTOR_SKIP(Name, T)
#define CODER_DESCRIPTOR_INDEX(Name, T) k##Name,
#define CODER_DESCRIPTOR_LIST_INDEX(Name, E) k##Name##List,
#define CODER_DESCRIPTOR_VALUE_INFO(Name, T) detail::valueField<T>(#Name, false),
#define CODER_DESCRIPTOR_OPTIONAL_INFO(Name, T) detail::optionalField<T>(#Name),
#define CODER_DESCRIPTOR_REFERENCE_INFO(Name, K) detail::referenceField<K>(#Name),
#define CODER_DESCRIPTOR_SEQUENCE_INFO(Name, E) detail::sequenceOf<E>(#Name),

#define CODER_DESCRIPTOR_DEFINE_GET(Name, T) \
    T Record::get##Name() const { return value<T>(k##Name); }
#define CODER_DESCRIPTOR_DEFINE_GET_OPTIONAL(Name, T)       \
    bool Record::has##Name() const { return has(k##Name); } \
    CODER_DESCRIPTOR_DEFINE_GET(Name, T)
#define CODER_DESCRIPTOR_DEFINE_REFERENCE(Name, K)                          \
    K Record::get##Name() const { return objectAs<K>(reference(k##Name)); } \
    void Record::set##Name(const K& value) { setReference(k##Name, value); }
#define CODER_DESCRIPTOR_DEFINE_SEQUENCE(Name, E) \
    Sequence<E> Record::get##Name() const { return Sequence<E>(sequence(k##Name##List)); }
#define CODER_DESCRIPTOR_DEFINE_SET(Name, T) \
    void RecordCreator::set##Name(detail::In<T> value) { setValue<T>(k##Name, value); }
