#pragma once

// The members of a record class and of its creator, declared from the
// record's list of fields and sequences. Each record kind's header defines
// that list once, as a macro taking four macro names, with one entry per
// field or sequence in column order; for example (a backslash ending each
// line of the macro but the last)
//
//   #define CODER_DESCRIPTOR_PORT(VALUE, OPTIONAL, REFERENCE, SEQUENCE)
//       VALUE(GraphicalName, ustring)
//       VALUE(Connected, bool)
//       REFERENCE(GraphicalSource, Port)
//       SEQUENCE(DataInterfaces, DataInterface)
//
//   class VELHOST_API Port : public Object {
//       CODER_DESCRIPTOR_RECORD(CODER_DESCRIPTOR_PORT)
//   };
//   class VELHOST_API PortCreator : public Creator {
//       CODER_DESCRIPTOR_CREATOR(Port, CODER_DESCRIPTOR_PORT)
//   };
//
// What each entry declares (all public):
//
//   VALUE(Name, T)        T getName() const on the record, and
//                         void setName(T value) on the creator (a ustring
//                         by const reference). T is bool, int32_t,
//                         uint32_t, int64_t (those of <cstdint>), double or
//                         ustring; a new record holds false, 0 or the empty
//                         text.
//   OPTIONAL(Name, T)     the same for a text that is absent until set,
//                         and bool hasName() const; getName() is empty
//                         while it is absent.
//   REFERENCE(Name, K)    K getName() const, a null K while not set, and
//                         void setName(const K& value), both on the record:
//                         setName writes at once and needs an open
//                         transaction.
//   SEQUENCE(Name, E)     Sequence<E> getName() const on the record: a list
//                         of records of kind E, or of values when E is
//                         IntegerArrayElement or StringListElement.
//
// Besides, the record has static const RecordKind& kind(), and the creator
// a constructor from the repository and K createK(), which writes the
// record. The definitions, the record's table and the file format all come
// from the same list (host/src/coder/RecordDefinition.hpp).

#include <cstdint>
#include <type_traits>

#include "coder/descriptor/Creator.hpp"
#include "coder/descriptor/IntegerArrayElement.hpp"
#include "coder/descriptor/Object.hpp"
#include "coder/descriptor/RecordKind.hpp"
#include "coder/descriptor/Sequence.hpp"
#include "coder/descriptor/StringListElement.hpp"

namespace coder::descriptor {

// The integer types of the lists.
using std::int32_t;
using std::int64_t;
using std::uint32_t;

namespace detail {
// How a setter takes a value of type T.
template <class T>
using In = std::conditional_t<std::is_scalar_v<T>, T, const T&>;
} // namespace detail

} // namespace coder::descriptor

#define CODER_DESCRIPTOR_RECORD(LIST)                                         \
public:                                                                       \
    static const RecordKind& kind();                                          \
    LIST(CODER_DESCRIPTOR_DECLARE_GET, CODER_DESCRIPTOR_DECLARE_GET_OPTIONAL, \
         CODER_DESCRIPTOR_DECLARE_REFERENCE, CODER_DESCRIPTOR_DECLARE_SEQUENCE)

#define CODER_DESCRIPTOR_CREATOR(Kind, LIST)                                                        \
public:                                                                                             \
    explicit Kind##Creator(Repository& repository);                                                 \
    LIST(CODER_DESCRIPTOR_DECLARE_SET, CODER_DESCRIPTOR_DECLARE_SET, CODER_DESCRIPTOR_DECLARE_NONE, \
         CODER_DESCRIPTOR_DECLARE_NONE)                                                             \
    Kind create##Kind();

#define CODER_DESCRIPTOR_DECLARE_GET(Name, T) T get##Name() const;
#define CODER_DESCRIPTOR_DECLARE_GET_OPTIONAL(Name, T) \
    bool has##Name() const;                            \
    T get##Name() const;
#define CODER_DESCRIPTOR_DECLARE_REFERENCE(Name, K) \
    K get##Name() const;                            \
    void set##Name(const K& value);
#define CODER_DESCRIPTOR_DECLARE_SEQUENCE(Name, E) Sequence<E> get##Name() const;
#define CODER_DESCRIPTOR_DECLARE_SET(Name, T) void set##Name(detail::In<T> value);
#define CODER_DESCRIPTOR_DECLARE_NONE(Name, T)
