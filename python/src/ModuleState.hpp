#pragma once

// What the module "velcg" keeps between calls: its Python classes, its error
// classes and the lookups that turn a native object into its Python class.
// One instance, made by defineModule and freed by releaseModule; read and
// written under the interpreter lock only.

#include <array>
#include <memory>
#include <pybind11/pybind11.h>
#include <string>
#include <unordered_map>

namespace VelCG::python {

namespace py = pybind11;

// The Python class made for a class of the object system. Objects point to
// it (ObjectState::cls), and may outlive the module state; they reach it
// only through stateOf, which refuses every object once the state is gone.
struct PythonClass {
    std::string qualifiedName;
    py::object type;
};

// A slot of the type-name cache: the Python class of the native objects
// whose type name is typeName (a pointer answered by
// getFullyQualifiedKorbTypeName).
struct TypeNameSlot {
    const char* typeName = nullptr;
    PythonClass* cls = nullptr;
};

struct ModuleState {
    // Set once defineModule has returned: another thread may meet the state
    // while the module is being defined (Python code run by the definition
    // lets it take the interpreter lock).
    bool defined = false;
    // velcg.Error, and velcg.UnknownMemberError for unknown members.
    py::object errorClass;
    py::object unknownMemberClass;
    // velcg.Object, the base of every class of the object system.
    py::object objectBaseType;
    // velcg.PropertyDescriptor.
    py::object propertyDescriptorType;
    // Python classes by qualified name, made on first use.
    std::unordered_map<std::string, std::unique_ptr<PythonClass>> classesByName;
    // The same classes by type-name pointer, for reads that meet an object:
    // a direct-mapped cache, a slot replaced when another pointer takes it.
    std::array<TypeNameSlot, 64> classesByTypeName{};

    // The state of the defined module: null before defineModule and after
    // releaseModule.
    static ModuleState* current() { return current_; }

private:
    friend void defineModule(py::module_& module);
    friend void releaseModule();
    static inline ModuleState* current_ = nullptr;
};

} // namespace VelCG::python
