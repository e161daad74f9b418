// The module "velcg" as an extension module for a Python process.
#include "Module.hpp"

PYBIND11_MODULE(velcg, module) { VelCG::python::defineModule(module); }
