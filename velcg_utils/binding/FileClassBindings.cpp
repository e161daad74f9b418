#include "ClassBindings.hpp"

namespace VelCG::binding {

void appendFileClasses(ClassList&) {}

} // namespace VelCG::binding
