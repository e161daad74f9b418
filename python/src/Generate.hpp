#pragma once

#include <pybind11/pybind11.h>

namespace VelCG::python {

// velcg.load and velcg.generate: a template run on a described model from
// a plain Python process, as velcg-gen runs it, for testing templates.
void defineGenerate(pybind11::module_& module);

} // namespace VelCG::python
