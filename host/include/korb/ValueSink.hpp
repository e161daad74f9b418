#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vel/HostExport.hpp"
#include "vel/tuvArray.hpp"

namespace vel::mi {
class Handle;
}

namespace korb {

// Receives the value of a property read without a host array being made
// for it (Client::readProperty): a scalar or a text as the getter returned
// it, objects one at a time, any other value as its host array. A read makes
// exactly one call, except that objects(n) is followed by n calls of
// object().
//
// The calls are made inside the read's access (vel::mi::Access): a receiver
// keeps what it needs and returns, never waits for anything that a thread
// destroying objects may hold, and keeps no object pointer beyond the call
// except through a reference it makes from it (vel::mi::Handle::makeRef,
// which then belongs to the lifetime of the reference read through).
class VELHOST_API ValueSink {
public:
    virtual ~ValueSink();

    virtual void logical(bool value) = 0;
    // An int32, uint32 or int64 scalar.
    virtual void integer(std::int64_t value) = 0;
    virtual void real(double value) = 0;
    // Text as the getter holds it, not yet checked: a receiver that needs
    // valid Unicode reports text that is not with "i18n:InvalidText", as the
    // host array would (vel::i18n converts and reports it).
    virtual void text(std::string_view utf8) = 0;
    virtual void text(std::wstring_view wide) = 0;
    // One object, or null for none (a property that holds one object).
    virtual void object(const vel::mi::Handle* object) = 0;
    // A list of `count` objects: count calls of object() follow, null for a
    // null element.
    virtual void objects(std::size_t count) = 0;
    virtual void array(tuvArrayPtr value) = 0;
};

} // namespace korb
