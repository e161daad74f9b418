#pragma once

#include <string>

#include "vel/tuvArray.hpp"

namespace korb {

// A generic value of the object system: a host array with the host type name
// under which the binder delivered it.
struct Value {
    std::string hostType;
    tuvArrayPtr data;
};

} // namespace korb
