#include "Objects.hpp"

#include <functional>
#include <pybind11/stl.h>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Values.hpp"
#include "korb/Binders.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/TemplateReference.hpp"

namespace VelCG::python {

namespace {

// The Python class of each object-system class, by qualified name, made on
// first use. Deliberately never freed: the interpreter may be gone by the
// time static destructors run.
std::unordered_map<std::string, py::object>& classTypes() {
    static auto* types = new std::unordered_map<std::string, py::object>();
    return *types;
}

py::object& objectBaseType() {
    static auto* base = new py::object();
    return *base;
}

// The type of property descriptors (velcg.PropertyDescriptor), made with
// the module.
py::object& propertyDescriptorType() {
    static auto* type = new py::object();
    return *type;
}

py::module_& moduleObject() {
    static auto* module = new py::module_();
    return *module;
}

std::string shortNameOf(const std::string& qualified) {
    const auto dot = qualified.rfind('.');
    return dot == std::string::npos ? qualified : qualified.substr(dot + 1);
}

// Members of the object-system classes, resolved once per class: a Python
// class holds one descriptor per own property and method, so that reading
// `obj.Name` goes straight to the object system instead of failing the
// ordinary attribute lookup first.
struct MethodDescriptor {
    std::string name;
    std::string doc;
    // "($self, name, /)", for inspect.signature and help().
    std::string textSignature;
};

// The documentation of a member of cls or of the class that declares it;
// empty when there is none.
const reference::MemberDoc* memberDoc(const vel::mi::HandleClass& cls, const std::string& name) {
    for (const vel::mi::HandleClass* c = &cls; c; c = client().getSuperclass(*c))
        if (const reference::MemberDoc* doc = reference::findMemberDoc(c->getQualifiedName(), name))
            return doc;
    return nullptr;
}

std::string textSignature(const reference::MemberDoc* doc) {
    std::string out = "($self";
    if (doc)
        for (const std::string& argument : doc->argumentNames) out += ", " + argument;
    return out + (doc && !doc->argumentNames.empty() ? ", /)" : ")");
}

// Sets the Python error for the exception being handled, as pybind11 does
// for its own functions (velcg.Error for host diagnostics).
void raiseCurrentException() {
    try {
        throw;
    } catch (py::error_already_set& e) {
        e.restore();
    } catch (...) {
        if (py::detail::apply_exception_translators(
                py::detail::get_local_internals().registered_exception_translators))
            return;
        if (py::detail::apply_exception_translators(
                py::detail::get_internals().registered_exception_translators))
            return;
        PyErr_SetString(PyExc_SystemError, "Exception escaped from default exception translator!");
    }
}

// A property of an object-system class, as a plain CPython descriptor: a
// read costs one C call, the client's read and the conversion of the value.
struct PropertyDescriptorObject {
    PyObject ob_base; // the object header
    std::string* name;
    std::string* doc;
    Shape shape;
};

PyObject* propertyGet(PyObject* self, PyObject* target, PyObject*) {
    if (!target || target == Py_None) {
        Py_INCREF(self);
        return self;
    }
    const auto* d = reinterpret_cast<PropertyDescriptorObject*>(self);
    try {
        const ObjectState& state = stateOf(target);
        return toPython(*client().getProperty(state.ref, *d->name), d->shape).release().ptr();
    } catch (...) {
        raiseCurrentException();
        return nullptr;
    }
}

void setAttribute(const ObjectState& self, const std::string& name, py::handle value);

int propertySet(PyObject* self, PyObject* target, PyObject* value) {
    if (!value) {
        PyErr_SetString(PyExc_AttributeError, "__delete__");
        return -1;
    }
    const auto* d = reinterpret_cast<PropertyDescriptorObject*>(self);
    try {
        setAttribute(stateOf(target), *d->name, value);
        return 0;
    } catch (...) {
        raiseCurrentException();
        return -1;
    }
}

PyObject* propertyRepr(PyObject* self) {
    const auto* d = reinterpret_cast<PropertyDescriptorObject*>(self);
    const std::string text = "<property " + *d->name + ">";
    return PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size()));
}

// The property's own documentation, as help() shows it.
PyObject* propertyDoc(PyObject* self, void*) {
    const std::string& doc = *reinterpret_cast<PropertyDescriptorObject*>(self)->doc;
    return PyUnicode_FromStringAndSize(doc.data(), static_cast<Py_ssize_t>(doc.size()));
}

void propertyDealloc(PyObject* self) {
    PyTypeObject* type = Py_TYPE(self);
    delete reinterpret_cast<PropertyDescriptorObject*>(self)->name;
    delete reinterpret_cast<PropertyDescriptorObject*>(self)->doc;
    type->tp_free(self);
    Py_DECREF(type); // instances of heap types hold their type
}

py::object makePropertyDescriptorType() {
    static PyGetSetDef getset[] = {{"__doc__", &propertyDoc, nullptr, nullptr, nullptr},
                                   {nullptr, nullptr, nullptr, nullptr, nullptr}};
    static PyType_Slot slots[] = {{Py_tp_descr_get, reinterpret_cast<void*>(&propertyGet)},
                                  {Py_tp_getset, getset},
                                  {Py_tp_descr_set, reinterpret_cast<void*>(&propertySet)},
                                  {Py_tp_repr, reinterpret_cast<void*>(&propertyRepr)},
                                  {Py_tp_dealloc, reinterpret_cast<void*>(&propertyDealloc)},
                                  {0, nullptr}};
    static PyType_Spec descriptorType = {"velcg.PropertyDescriptor", sizeof(PropertyDescriptorObject), 0,
                                         Py_TPFLAGS_DEFAULT, slots};
    PyObject* type = PyType_FromSpec(&descriptorType);
    if (!type) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(type);
}

py::object makePropertyDescriptor(const std::string& name, const std::string& doc, Shape shape) {
    auto* type = reinterpret_cast<PyTypeObject*>(propertyDescriptorType().ptr());
    PyObject* self = type->tp_alloc(type, 0);
    if (!self) throw py::error_already_set();
    auto* d = reinterpret_cast<PropertyDescriptorObject*>(self);
    d->shape = shape;
    d->name = nullptr;
    d->doc = nullptr;
    py::object owned = py::reinterpret_steal<py::object>(self);
    d->name = new std::string(name);
    d->doc = new std::string(doc);
    return owned;
}

// The Python class for a registered class: a subclass of the Python class
// of its superclass, or of velcg.Object. Classes of the package "VelCG" are
// also attributes of the module, by short name.
py::object pythonClassFor(const vel::mi::HandleClass& cls) {
    auto& types = classTypes();
    const std::string& name = cls.getQualifiedName();
    if (auto it = types.find(name); it != types.end()) return it->second;
    // The host's own mixin classes ("plexo.mixin.Heterogeneous") have no
    // members; their subclasses derive from velcg.Object directly.
    py::object base = objectBaseType();
    const vel::mi::HandleClass* super = client().getSuperclass(cls);
    if (super && super->getQualifiedName().rfind("plexo.", 0) != 0) base = pythonClassFor(*super);
    py::dict members;
    members["__slots__"] = py::tuple();
    members["__module__"] = py::str("velcg");
    members["__doc__"] = py::str(cls.getDescription());
    members["__qualname__"] = py::str(shortNameOf(name));
    for (const auto& p : cls.getProperties()) {
        const reference::MemberDoc* doc = reference::findMemberDoc(name, p.name);
        members[py::str(p.name)] = makePropertyDescriptor(
            p.name, doc ? doc->summary + (p.setter ? "" : " Read-only.") : "",
            shapeOf(p.getter->hostTypeName(), p.getter->deliversOneObject(), p.elementClass));
    }
    for (const auto& m : cls.getMethods()) {
        const reference::MemberDoc* doc = reference::findMemberDoc(name, m.name);
        members[py::str(m.name)] =
            py::cast(MethodDescriptor{m.name, doc ? doc->summary : "", textSignature(doc)});
    }
    py::object type = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(&PyType_Type))(
        shortNameOf(name), py::make_tuple(base), members);
    types.emplace(name, type);
    return type;
}

// The class of the object, looked up inside an access: its type name is
// read from the object itself.
const vel::mi::HandleClass& classOfRef(const vel::mi::HandleRef& ref) {
    const vel::mi::Access access(ref);
    return client().classOf(live(access));
}

[[noreturn]] void rethrowConversion(const WrongPythonType& e, const std::string& identifier,
                                    std::vector<std::string> leading) {
    leading.push_back(
        vel::diag::Diagnostic::fromCatalog("Korb:TypeMismatch", {e.expected, e.what}).message());
    vel::diag::throwError(identifier, std::move(leading));
}

py::object getAttribute(py::handle target, const std::string& name) {
    const ObjectState& self = stateOf(target);
    const vel::mi::HandleClass& cls = classOfRef(self.ref);
    if (const auto* property = client().findProperty(cls, name)) {
        const tuvArrayPtr value = client().getProperty(self.ref, name);
        return toPython(*value, shapeOf(property->getter->hostTypeName(),
                                        property->getter->deliversOneObject(), property->elementClass));
    }
    if (client().findMethod(cls, name)) {
        const reference::MemberDoc* doc = memberDoc(cls, name);
        return py::cast(BoundMethod{self.ref, cls.getQualifiedName(), name, doc ? doc->summary : ""});
    }
    vel::diag::throwError("Korb:UnknownProperty", {name, cls.getQualifiedName()});
}

void setAttribute(const ObjectState& self, const std::string& name, py::handle value) {
    const vel::mi::HandleClass& cls = classOfRef(self.ref);
    const auto* property = client().findProperty(cls, name);
    if (!property) vel::diag::throwError("Korb:UnknownProperty", {name, cls.getQualifiedName()});
    // A read-only property: the client refuses any value with its own message.
    if (!property->setter) client().setProperty(self.ref, name, *tuvArray::empty());
    tuvArrayPtr converted;
    try {
        converted = fromPython(value, property->setter->hostTypeName());
    } catch (const WrongPythonType& e) {
        rethrowConversion(e, "Korb:InvalidPropertyValue", {name, cls.getQualifiedName()});
    }
    client().setProperty(self.ref, name, *converted);
}

py::object callMethod(const BoundMethod& self, py::args args) {
    const vel::mi::HandleClass& cls = classOfRef(self.ref);
    const auto* method = client().findMethod(cls, self.name);
    if (!method) vel::diag::throwError("Korb:UnknownMethod", {self.name, cls.getQualifiedName()});
    const auto& types = method->binder->argumentTypes();
    std::vector<tuvArrayPtr> converted;
    converted.reserve(args.size());
    for (std::size_t i = 0; i < args.size(); ++i) {
        // With the wrong number of arguments the client reports the count;
        // the arguments only need to be host values.
        const std::string& type = args.size() == types.size() ? types[i] : std::string(korb::kAny);
        try {
            converted.push_back(fromPython(args[i], type));
        } catch (const WrongPythonType& e) {
            rethrowConversion(e, "Korb:InvalidMethodArgument",
                              {self.name, cls.getQualifiedName(), std::to_string(i + 1)});
        }
    }
    const tuvArrayPtr result = client().callMethod(self.ref, self.name, converted);
    if (method->binder->resultType().empty()) return py::none();
    return toPython(*result,
                    shapeOf(method->binder->resultType(), method->binder->returnsOneObject(), std::string()));
}

std::vector<std::string> memberNames(py::handle target) {
    const vel::mi::Access access(stateOf(target).ref);
    const vel::mi::Handle& object = live(access);
    std::vector<std::string> names = client().getPropertyNames(object);
    for (std::string& m : client().getMethodNames(object)) names.push_back(std::move(m));
    return names;
}

// Whether other is a velcg.Object for the same native object as self.
bool sameObject(py::handle self, py::handle other) {
    const ObjectState& state = stateOf(self);
    return py::isinstance<ObjectState>(other) && state.ref.sameObject(stateOf(other).ref);
}

// The state wrap() is making an object for, on this thread. Its capsule
// carries nothing else: a capsule that a script kept cannot pass for it.
thread_local const ObjectState* wrapping = nullptr;
constexpr const char* kWrappingCapsule = "velcg.ObjectState";

ObjectState fromCapsule(const py::capsule& capsule) {
    const std::string name = capsule.name() ? capsule.name() : "";
    if (name == kWrappingCapsule && wrapping && capsule.get_pointer() == wrapping) return *wrapping;
    if (name != "vel.mi.Handle") vel::diag::throwError("VelCG:Python:NotAHandleCapsule", {name});
    auto* handle = static_cast<vel::mi::Handle*>(capsule.get_pointer());
    if (!handle) vel::diag::throwError("Korb:InvalidHandle", {});
    client().classOf(*handle);
    return ObjectState{handle->makeRef(), handle->getFullyQualifiedKorbTypeName()};
}

} // namespace

// The native state of a velcg.Object, straight from the instance; any other
// target takes pybind11's cast, which refuses it.
const ObjectState& stateOf(py::handle target) {
    PyObject* base = objectBaseType().ptr();
    if (base && PyObject_TypeCheck(target.ptr(), reinterpret_cast<PyTypeObject*>(base))) {
        auto* instance = reinterpret_cast<py::detail::instance*>(target.ptr());
        if (instance->simple_layout && instance->simple_holder_constructed)
            return *static_cast<const ObjectState*>(instance->simple_value_holder[0]);
        // Made by __new__ alone: there is no state to read.
        if (instance->simple_layout) throw py::type_error("the velcg object was never initialized");
    }
    return target.cast<const ObjectState&>();
}

py::custom_type_setup nativeInstancesOnly() {
    return py::custom_type_setup(
        [](PyHeapTypeObject* type) { type->ht_type.tp_flags |= Py_TPFLAGS_DISALLOW_INSTANTIATION; });
}

vel::mi::Handle& live(const vel::mi::Access& access) {
    vel::mi::Handle* object = access.object();
    if (!object) vel::diag::throwError("Korb:InvalidHandle", {});
    return *object;
}

void requireLive(const vel::mi::HandleRef& ref) {
    if (!ref) vel::diag::throwError("Korb:InvalidHandle", {});
}

py::object wrap(const vel::mi::HandleRef& ref) {
    if (!ref.identity()) return py::none();
    // An embedding runtime may wrap its globals before a script imported the module.
    if (!objectBaseType()) py::module_::import("velcg");
    const vel::mi::HandleClass& cls = classOfRef(ref);
    const ObjectState state{ref, cls.getQualifiedName()};
    py::object type = pythonClassFor(cls);
    const ObjectState* outer = std::exchange(wrapping, &state);
    try {
        py::object object = type(py::capsule(const_cast<ObjectState*>(&state), kWrappingCapsule));
        wrapping = outer;
        return object;
    } catch (...) {
        wrapping = outer;
        throw;
    }
}

void releaseObjects() {
    classTypes().clear();
    objectBaseType() = py::object();
    propertyDescriptorType() = py::object();
    moduleObject() = py::module_();
}

void defineObjects(py::module_& module) {
    classTypes().clear();
    moduleObject() = module;

    py::class_<ObjectState> object(module, "Object", R"(A native object of the object system.

Its properties are attributes (readable, and writable where the class allows)
and its methods are callable by name. It does not own the native object:
once that is destroyed, every use raises velcg.Error ("Korb:InvalidHandle").)");
    object
        .def(py::init(&fromCapsule), py::arg("handle"),
             "The object behind a capsule named \"vel.mi.Handle\" that holds a native handle pointer.")
        .def("__getattr__", &getAttribute)
        .def("__setattr__", [](py::handle self, const std::string& name,
                               py::handle value) { setAttribute(stateOf(self), name, value); })
        .def("__dir__", &memberNames)
        .def("__repr__",
             [](py::handle self) {
                 const ObjectState& state = stateOf(self);
                 return "<" + state.className + (state.ref ? " object>" : " object (destroyed)>");
             })
        .def("__eq__", [](py::handle self, py::handle other) { return sameObject(self, other); })
        .def("__ne__", [](py::handle self, py::handle other) { return !sameObject(self, other); })
        .def("__hash__",
             [](py::handle self) { return std::hash<const void*>()(stateOf(self).ref.identity()); });
    objectBaseType() = object;

    py::class_<BoundMethod>(module, "Method", nativeInstancesOnly(),
                            "A method of one native object; call it with its arguments.")
        .def("__call__", &callMethod)
        .def_readonly("__doc__", &BoundMethod::doc)
        .def("__repr__", [](const BoundMethod& self) {
            return "<method " + self.name + " of " + self.className + " object>";
        });

    using D = DataInterfaceValue;
    py::class_<D>(module, "DataInterface", nativeInstancesOnly(), classDoc("DataInterface"))
        .def_property_readonly(
            "identifier", [](const D& d) { return d.value->getDescription().identifier; },
            operationDoc("DataInterface", "identifier"))
        .def_property_readonly(
            "implementation", [](const D& d) { return d.value->getDescription().implementation; },
            operationDoc("DataInterface", "implementation"))
        .def_property_readonly(
            "owner", [](const D& d) { return d.value->getDescription().owner; },
            operationDoc("DataInterface", "owner"))
        .def_property_readonly(
            "typeName", [](const D& d) { return d.value->getDescription().typeName; },
            operationDoc("DataInterface", "typeName"))
        .def_property_readonly(
            "graphicalName", [](const D& d) { return d.value->getDescription().graphicalName; },
            operationDoc("DataInterface", "graphicalName"))
        .def("__eq__",
             [](const DataInterfaceValue& self, py::object other) {
                 return py::isinstance<DataInterfaceValue>(other) &&
                        self.value == other.cast<const DataInterfaceValue&>().value;
             })
        .def("__hash__", [](const DataInterfaceValue& d) { return std::hash<const void*>()(d.value.get()); })
        .def("__repr__", [](const DataInterfaceValue& d) {
            return "<coder.DataInterface " + d.value->getDescription().identifier + ">";
        });

    py::class_<EmbeddedTypeValue>(module, "EmbeddedType", nativeInstancesOnly(), classDoc("EmbeddedType"))
        .def_property_readonly(
            "name", [](const EmbeddedTypeValue& t) { return t.value->getName(); },
            operationDoc("EmbeddedType", "name"))
        .def("__eq__",
             [](const EmbeddedTypeValue& self, py::object other) {
                 return py::isinstance<EmbeddedTypeValue>(other) &&
                        self.value == other.cast<const EmbeddedTypeValue&>().value;
             })
        .def("__hash__", [](const EmbeddedTypeValue& t) { return std::hash<const void*>()(t.value.get()); })
        .def("__repr__",
             [](const EmbeddedTypeValue& t) { return "<embedded.type " + t.value->getName() + ">"; });

    py::class_<HostValue>(module, "HostValue", nativeInstancesOnly(), classDoc("HostValue"))
        .def_property_readonly(
            "className", [](const HostValue& v) { return v.value->className(); },
            operationDoc("HostValue", "className"))
        .def("__repr__", [](const HostValue& v) { return "<" + v.value->describe() + ">"; });

    module.def(
        "classOf", [](py::handle obj) { return classOfRef(stateOf(obj).ref).getQualifiedName(); },
        py::arg("obj"), operationDoc("", "classOf"));

    propertyDescriptorType() = makePropertyDescriptorType();
    module.attr("PropertyDescriptor") = propertyDescriptorType();
    py::class_<MethodDescriptor> methodDescriptor(module, "MethodDescriptor", nativeInstancesOnly(),
                                                  "A method of an object-system class.");
    methodDescriptor
        .def("__get__",
             [](const MethodDescriptor& self, py::handle target, py::handle) -> py::object {
                 if (target.is_none()) return py::cast(self);
                 const ObjectState& state = stateOf(target);
                 requireLive(state.ref);
                 return py::cast(BoundMethod{state.ref, state.className, self.name, self.doc});
             })
        // Called on an object, as Class.method(obj, ...), it calls the
        // object's method.
        .def("__call__",
             [](const MethodDescriptor& self, py::handle target, py::args args) {
                 const ObjectState& state = stateOf(target);
                 return callMethod(BoundMethod{state.ref, state.className, self.name, self.doc}, args);
             })
        .def_readonly("__doc__", &MethodDescriptor::doc)
        .def("__repr__", [](const MethodDescriptor& self) { return "<method " + self.name + ">"; });
    // help() documents a method descriptor by its __name__ and, through
    // inspect.signature, the argument names of its __text_signature__. A
    // type refuses both attributes when set the usual way, so their
    // properties go into the class dictionary directly.
    auto* type = reinterpret_cast<PyTypeObject*>(methodDescriptor.ptr());
    const py::object property = py::module_::import("builtins").attr("property");
    const std::pair<const char*, std::string MethodDescriptor::*> instanceAttributes[] = {
        {"__name__", &MethodDescriptor::name}, {"__text_signature__", &MethodDescriptor::textSignature}};
    for (const auto& [attribute, member] : instanceAttributes) {
        py::object getter = property(
            py::cpp_function([member = member](const MethodDescriptor& self) { return self.*member; },
                             py::is_method(methodDescriptor)));
        if (PyDict_SetItemString(type->tp_dict, attribute, getter.ptr()) != 0) throw py::error_already_set();
    }
    PyType_Modified(type);

    // One Python class per class of the package, so that isinstance works
    // and editors can complete members from the generated stub.
    for (const vel::mi::HandleClass* cls : client().getClasses("VelCG"))
        module.attr(shortNameOf(cls->getQualifiedName()).c_str()) = pythonClassFor(*cls);
}

} // namespace VelCG::python
