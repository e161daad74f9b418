#pragma once

// Class records of the package "VelCG", split by area so that each area's
// bindings live next to each other. The package registers the generated-file
// classes first, then the model classes; within each list the order is the
// registration order scripts see.

#include <memory>
#include <vector>

#include "vel/mi/HandleClass.hpp"

namespace VelCG::binding {

using ClassList = std::vector<std::unique_ptr<vel::mi::HandleClass>>;

// "FileSection" ... "VelCGFileRepository".
void appendFileClasses(ClassList& classes);

// "System" ... "DataInterfaceRecord".
void appendModelClasses(ClassList& classes);

} // namespace VelCG::binding
