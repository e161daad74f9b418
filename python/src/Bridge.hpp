#pragma once

#include "Module.hpp"

namespace VelCG::python {

// Adds velcg.Bridge, velcg.CustomContents and velcg.bridge(repository).
void defineBridge(py::module_& module);

} // namespace VelCG::python
