#pragma once

// The Python module "velcg": template scripts reach every class of the
// object system as Python objects (properties as attributes, methods by
// name), and fill and write generated files through the script bridge.
// Built twice from the same code: as an extension module for a Python
// process, and into the embedding runtime (PythonRuntime) as a built-in one.

#include <pybind11/pybind11.h>
#include <string>

namespace vel::mi {
class HandleRef;
}

namespace korb {
class Client;
}

namespace VelCG::python {

namespace py = pybind11;

// Fills the module: its classes, functions and the translation of host
// diagnostics into velcg.Error.
void defineModule(py::module_& module);
// Drops every reference to the module's classes held outside the
// interpreter, so that an embedding runtime that shuts the interpreter down
// lets them be freed with it. The module cannot be used afterwards.
void releaseModule();

korb::Client& client();

// The Python object for a native object, of the Python class of its
// object-system class; None for a null reference.
py::object wrap(const vel::mi::HandleRef& ref);

// The class velcg.Error, once the module is defined.
py::object errorType();

// The documentation of a class of the module of its own, and of its
// operations (class "" for the module's functions), from the library's
// table (reference::moduleClasses). Raises std::logic_error for a name the
// table lacks, so that the module cannot drift from it unnoticed.
const char* classDoc(const char* className);
const char* operationDoc(const char* className, const char* name);

} // namespace VelCG::python
