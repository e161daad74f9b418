#include "ClassBindings.hpp"

namespace VelCG::binding {

void appendModelClasses(ClassList&) {}

} // namespace VelCG::binding
