#pragma once

// Class records of the package "VelCG", split by area so that each area's
// bindings live next to each other. The package registers the generated-file
// classes first, then the model classes; within each list the order is the
// registration order scripts see. Every binding file includes this header
// and with it the host conversions of the library's types.

#include <memory>
#include <vector>

#include "BindingTraits.hpp"
#include "vel/mi/HandleClass.hpp"

namespace VelCG::binding {

using ClassList = std::vector<std::unique_ptr<vel::mi::HandleClass>>;

// "FileSection" ... "VelCGFileRepository".
void appendFileClasses(ClassList& classes);

// "System" ... "DataInterfaceRecord".
void appendModelClasses(ClassList& classes);

} // namespace VelCG::binding
