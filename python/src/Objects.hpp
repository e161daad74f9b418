#pragma once

#include <string>

#include <boost/intrusive_ptr.hpp>

#include "CG/DataInterface.hpp"
#include "CG/EmbeddedType.hpp"
#include "Module.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"

namespace VelCG::python {

struct PythonClass;

// The native state of a velcg.Object, kept in the Python object itself: a
// reference that turns null when the native object dies, and the class it
// had, for messages about it.
struct ObjectState {
    vel::mi::HandleRef ref;
    // Owned by the module state; null for an instance never initialized.
    const PythonClass* cls = nullptr;
    const std::string& className() const;
};

// Host values that are not objects of the object system, holding their own
// reference to the native value.
struct DataInterfaceValue {
    boost::intrusive_ptr<const CG::DataInterface> value;
};
struct EmbeddedTypeValue {
    boost::intrusive_ptr<const CG::EmbeddedType> value;
};
// Any other foreign host value, passed through unchanged.
struct HostValue {
    tuvArrayPtr value;
};

// True for a velcg.Object (of any of its classes), initialized or not.
bool isObject(py::handle target);
// The state of a velcg.Object. Anything else, and an instance that __new__
// made without a native object, raise TypeError, as for any other Python
// object.
const ObjectState& stateOf(py::handle target);

// For the classes whose instances only native code makes: Python cannot
// create one (Class.__new__(Class) raises TypeError), so that no method
// meets an instance that was never initialized.
py::custom_type_setup nativeInstancesOnly();

// The object of an open access, or "Korb:InvalidHandle". Native objects are
// used only inside an access (see vel::mi::Access), and no Python code runs
// inside one: a thread that destroys objects while it holds the interpreter
// lock waits for the accesses of the others.
vel::mi::Handle& live(const vel::mi::Access& access);
// Raises "Korb:InvalidHandle" when the reference is dead.
void requireLive(const vel::mi::HandleRef& ref);

// The Python object for a native object, of the Python class of its
// object-system class; None for a null reference. Defines the module first
// when no script has imported it yet.
py::object wrap(const vel::mi::HandleRef& ref);

// Adds velcg.Object and the classes of the object system to the module.
// REQUIRES: the module state is made (defineModule).
void defineObjects(py::module_& module);

} // namespace VelCG::python
