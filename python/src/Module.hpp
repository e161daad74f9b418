#pragma once

// The Python module "velcg": template scripts reach every class of the
// object system as Python objects (properties as attributes, methods by
// name), and fill and write generated files through the script bridge.
// Built twice from the same code: as an extension module for a Python
// process, and into the embedding runtime (PythonRuntime) as a built-in one.

#include <pybind11/pybind11.h>
#include <string>

namespace korb {
class Client;
}

namespace VelCG::python {

namespace py = pybind11;

// Fills the module: its classes, functions and the translation of host
// diagnostics into velcg.Error. Makes the module state (ModuleState), in
// place of any earlier one.
void defineModule(py::module_& module);
// Frees the module state, dropping its references to the module's classes,
// so that an embedding runtime that shuts the interpreter down lets them be
// freed with it. The module's objects are refused afterwards (TypeError).
// REQUIRES: the interpreter lock, before the interpreter ends.
void releaseModule();

// The object system's client that every call of the module goes through.
korb::Client& client();

// The documentation of a class of the module of its own, and of its
// operations (class "" for the module's functions), from the library's
// table (reference::moduleClasses). Raises std::logic_error for a name the
// table lacks, so that the module cannot drift from it unnoticed.
const char* classDoc(const char* className);
const char* operationDoc(const char* className, const char* name);

} // namespace VelCG::python
