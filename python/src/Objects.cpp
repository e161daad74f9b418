#include "Objects.hpp"

#include <atomic>
#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <pybind11/stl.h>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "Messages.hpp"
#include "ModuleState.hpp"
#include "PybindInternals.hpp"
#include "Values.hpp"
#include "korb/Binders.hpp"
#include "korb/Client.hpp"
#include "korb/Messages.hpp"
#include "korb/ObjectSystem.hpp"
#include "korb/ValueSink.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/HandleClass.hpp"
#include "vel/mi/Lifetime.hpp"
#include "velcg/TemplateReference.hpp"

// A velcg.Object is a plain CPython object holding its ObjectState. Each
// class of the object system has a Python class of its own, derived from
// that of its superclass (or from velcg.Object), with one descriptor per own
// property and method in its dictionary.
//
// Reading a property takes one C call of its descriptor: the object system
// reads the native getter into a sink (korb::ValueSink) inside the access,
// where scalars and text are copied and objects looked up, and the Python
// value is made once the access is over. The Python object made for a
// native object is kept in the slot of its references
// (vel::mi::HandleRef::scriptObjectSlot) while it lives, so that reading
// that object again, through a reference of the same lifetime, gives the
// same Python object; one of another lifetime (an object kept from an
// earlier template run) gets an object of its own.

namespace VelCG::python {

const std::string& ObjectState::className() const { return cls->qualifiedName; }

namespace {

struct ObjectInstance {
    PyObject ob_base; // the object header
    ObjectState state;
};

// A method of one object, as `obj.name` returns it; calling it calls the
// native method.
struct BoundMethod {
    vel::mi::HandleRef ref;
    std::string className;
    std::string name;
    std::string doc;
};

// The state of the defined module. REQUIRES: the module is defined.
ModuleState& state() {
    ModuleState* current = ModuleState::current();
    assert(current && "the module velcg is not defined");
    return *current;
}

std::string shortNameOf(const std::string& qualified) {
    const auto dot = qualified.rfind('.');
    return dot == std::string::npos ? qualified : qualified.substr(dot + 1);
}

ObjectInstance* instanceOf(PyObject* object) { return reinterpret_cast<ObjectInstance*>(object); }

// False for every object once the module state is gone, so that no object
// reaches its PythonClass then.
bool isObjectPointer(PyObject* object) {
    const ModuleState* current = ModuleState::current();
    PyObject* base = current ? current->objectBaseType.ptr() : nullptr;
    return base && PyObject_TypeCheck(object, reinterpret_cast<PyTypeObject*>(base));
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

// Runs f, turning what it throws into the Python error; `failed` is what a
// C slot returns then.
template <class R, class F>
R guarded(R failed, F&& f) {
    try {
        return f();
    } catch (...) {
        setCurrentPythonError();
        return failed;
    }
}

// --- The Python object of a native object --------------------------------

// The Python object kept in slot for a reference of `lifetime`, as a new
// reference; null when none is kept, or the one kept is not ours or was made
// for a reference of another lifetime. Touches no Python code: it may run
// inside an access.
PyObject* keptObject(const std::atomic<void*>* slot, const vel::mi::Lifetime* lifetime) {
    if (!slot) return nullptr;
    auto* kept = static_cast<PyObject*>(slot->load(std::memory_order_relaxed));
    if (!kept || !isObjectPointer(kept) || instanceOf(kept)->state.ref.lifetime().get() != lifetime)
        return nullptr;
    Py_INCREF(kept);
    return kept;
}

PythonClass& pythonClassFor(const vel::mi::HandleClass& cls);
void objectDealloc(PyObject* self);

// The Python class for objects whose native type name is typeName (which
// getFullyQualifiedKorbTypeName answered); "Korb:UnknownClass" when no such
// class is registered.
PythonClass& pythonClassForTypeName(const char* typeName) {
    auto& slots = state().classesByTypeName;
    const auto bits = reinterpret_cast<std::uintptr_t>(typeName);
    TypeNameSlot& slot = slots[((bits >> 3) ^ (bits >> 9)) % slots.size()];
    if (slot.typeName == typeName && slot.cls) return *slot.cls;
    const vel::mi::HandleClass* cls = typeName ? client().findClass(typeName) : nullptr;
    if (!cls) vel::diag::throwError(korb::messages::UnknownClass, {typeName ? typeName : ""});
    PythonClass& python = pythonClassFor(*cls);
    slot = {typeName, &python};
    return python;
}

// A new Python object for ref, whose object's type name is typeName, or the
// one kept for it: the object a Python read of ref gives.
PyObject* objectFor(vel::mi::HandleRef ref, const char* typeName) {
    if (PyObject* kept = keptObject(ref.scriptObjectSlot(), ref.lifetime().get())) return kept;
    PythonClass& cls = pythonClassForTypeName(typeName);
    auto* type = reinterpret_cast<PyTypeObject*>(cls.type.ptr());
    PyObject* object = type->tp_alloc(type, 0);
    if (!object) throw py::error_already_set();
    new (&instanceOf(object)->state) ObjectState{std::move(ref), &cls};
    if (std::atomic<void*>* slot = instanceOf(object)->state.ref.scriptObjectSlot())
        slot->store(object, std::memory_order_relaxed);
    return object;
}

// The type name of a live reference's object, or "Korb:InvalidHandle".
const char* typeNameOf(const vel::mi::HandleRef& ref) {
    const vel::mi::Access access(ref);
    return live(access).getFullyQualifiedKorbTypeName();
}

// The class of the object, looked up inside an access: its type name is
// read from the object itself.
const vel::mi::HandleClass& classOfRef(const vel::mi::HandleRef& ref) {
    const vel::mi::Access access(ref);
    return client().classOf(live(access));
}

// --- Reading a property ---------------------------------------------------

// Text copied out of an access: short text in place, longer on the heap.
template <class Char>
class CopiedText {
public:
    void assign(std::basic_string_view<Char> text) {
        size_ = text.size();
        if (size_ <= kInPlace)
            std::char_traits<Char>::copy(inPlace_, text.data(), size_);
        else
            onHeap_.assign(text);
    }
    std::basic_string_view<Char> view() const {
        return size_ <= kInPlace ? std::basic_string_view<Char>(inPlace_, size_) : onHeap_;
    }

private:
    static constexpr std::size_t kInPlace = 48;
    Char inPlace_[kInPlace];
    std::size_t size_ = 0;
    std::basic_string<Char> onHeap_;
};

// A str from text a getter returned. Text that is not valid Unicode takes
// the host's own conversion, which reports it ("i18n:InvalidText").
py::object strFromUtf8(std::string_view text) {
    if (PyObject* str = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr))
        return py::reinterpret_steal<py::object>(str);
    PyErr_Clear();
    return toPython(*tuvArray::fromUtf8(std::string(text)), Shape::Generic);
}

py::object strFromWide(std::wstring_view text) {
    if constexpr (sizeof(wchar_t) == 4) {
        // Python keeps lone surrogates in a str; the host refuses them.
        bool valid = true;
        for (const wchar_t c : text)
            valid = valid && static_cast<std::uint32_t>(c) <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
        if (valid) {
            PyObject* str = PyUnicode_FromKindAndData(PyUnicode_4BYTE_KIND, text.data(),
                                                      static_cast<Py_ssize_t>(text.size()));
            if (!str) throw py::error_already_set();
            return py::reinterpret_steal<py::object>(str);
        }
    }
    return toPython(*tuvArray::fromWide(std::wstring(text)), Shape::Generic);
}

// Receives a property read inside its access, then makes the Python value.
class Reader final : public korb::ValueSink {
public:
    // lifetime: that of the reference read through, which the references to
    // the objects read belong to.
    Reader(const std::shared_ptr<vel::mi::Lifetime>& lifetime, Shape shape)
        : lifetime_(lifetime), shape_(shape) {}
    ~Reader() override {
        for (std::size_t i = 0; i < count_; ++i) Py_XDECREF(element(i).kept);
        for (std::size_t i = 0; i < count_ && i < kInPlace; ++i) inPlace_[i].element.~Element();
    }

    void logical(bool value) override {
        kind_ = Kind::Logical;
        integer_ = value;
    }
    void integer(std::int64_t value) override {
        kind_ = Kind::Integer;
        integer_ = value;
    }
    void real(double value) override {
        kind_ = Kind::Real;
        real_ = value;
    }
    void text(std::string_view utf8) override {
        kind_ = Kind::Narrow;
        narrow_.assign(utf8);
    }
    void text(std::wstring_view wide) override {
        kind_ = Kind::Wide;
        wide_.assign(wide);
    }
    void objects(std::size_t count) override {
        kind_ = Kind::List;
        if (count > kInPlace) more_.reserve(count - kInPlace);
    }
    void object(const vel::mi::Handle* object) override {
        if (kind_ != Kind::List) kind_ = Kind::One;
        Element& e = count_ < kInPlace ? *new (&inPlace_[count_].element) Element() : more_.emplace_back();
        ++count_;
        if (!object) return;
        if ((e.kept = keptObject(object->scriptObjectSlot(), lifetime_.get()))) {
            dead_ = dead_ || !instanceOf(e.kept)->state.ref;
            return;
        }
        e.ref = object->makeRef(lifetime_);
        e.typeName = object->getFullyQualifiedKorbTypeName();
        dead_ = dead_ || !e.ref;
    }
    void array(tuvArrayPtr value) override {
        kind_ = Kind::Array;
        array_ = std::move(value);
    }

    // The value read, once the access is over.
    py::object value() {
        switch (kind_) {
            case Kind::Logical:
                return py::bool_(integer_ != 0);
            case Kind::Integer:
                return py::reinterpret_steal<py::object>(PyLong_FromLongLong(integer_));
            case Kind::Real:
                return py::float_(real_);
            case Kind::Narrow:
                return strFromUtf8(narrow_.view());
            case Kind::Wide:
                return strFromWide(wide_.view());
            case Kind::One:
            case Kind::List:
                return objects();
            case Kind::Array:
                break;
        }
        return toPython(*array_, shape_);
    }

private:
    enum class Kind { Array, Logical, Integer, Real, Narrow, Wide, One, List };
    // An object read: the Python object kept for it, or a reference and its
    // type name to make one from; neither for a null pointer.
    struct Element {
        PyObject* kept = nullptr;
        vel::mi::HandleRef ref;
        const char* typeName = nullptr;
    };

    py::object objects() {
        // As the host array's objects would be: one that began to die is a
        // dead reference, which reading refuses.
        if (dead_) vel::diag::throwError(korb::messages::InvalidHandle, {});
        if (kind_ == Kind::One || shape_ == Shape::One || (shape_ == Shape::Generic && count_ == 1))
            return count_ == 0 ? py::none() : take(element(0));
        py::list list(count_);
        for (std::size_t i = 0; i < count_; ++i)
            PyList_SET_ITEM(list.ptr(), i, take(element(i)).release().ptr());
        return std::move(list);
    }

    static py::object take(Element& e) {
        if (e.kept) return py::reinterpret_steal<py::object>(std::exchange(e.kept, nullptr));
        if (!e.typeName) return py::none();
        return py::reinterpret_steal<py::object>(objectFor(std::move(e.ref), e.typeName));
    }

    const std::shared_ptr<vel::mi::Lifetime>& lifetime_;
    Shape shape_;
    Kind kind_ = Kind::Array;
    bool dead_ = false;
    std::int64_t integer_ = 0;
    double real_ = 0;
    CopiedText<char> narrow_;
    CopiedText<wchar_t> wide_;
    // The objects read, the first kInPlace in place.
    static constexpr std::size_t kInPlace = 2;
    Element& element(std::size_t i) { return i < kInPlace ? inPlace_[i].element : more_[i - kInPlace]; }
    std::size_t count_ = 0;
    // Made only when used: most reads deliver no object.
    union InPlace {
        InPlace() {}
        ~InPlace() {}
        Element element;
    } inPlace_[kInPlace];
    std::vector<Element> more_;
    tuvArrayPtr array_;
};

// A property of an object-system class, as a plain CPython descriptor.
struct PropertyDescriptorObject {
    PyObject ob_base; // the object header
    std::string* name;
    std::string* doc;
    std::string_view nameView; // of *name, read without reaching it
    Shape shape;
    // What reading the property learnt of the last object's class; used
    // under the interpreter lock only.
    korb::Client::ReadCache cache;
};
static_assert(std::is_trivially_destructible_v<korb::Client::ReadCache>,
              "the descriptor's memory is freed without destroying its cache");

PyObject* propertyGet(PyObject* self, PyObject* target, PyObject*) {
    if (!target || target == Py_None) {
        Py_INCREF(self);
        return self;
    }
    auto* d = reinterpret_cast<PropertyDescriptorObject*>(self);
    return guarded<PyObject*>(nullptr, [&] {
        const ObjectState& state = stateOf(target);
        Reader reader(state.ref.lifetime(), d->shape);
        client().readProperty(state.ref, d->nameView, d->cache, reader);
        return reader.value().release().ptr();
    });
}

void setAttribute(const ObjectState& self, const std::string& name, py::handle value);

int propertySet(PyObject* self, PyObject* target, PyObject* value) {
    if (!value) {
        PyErr_SetString(PyExc_AttributeError, "__delete__");
        return -1;
    }
    const auto* d = reinterpret_cast<PropertyDescriptorObject*>(self);
    return guarded(-1, [&] {
        setAttribute(stateOf(target), *d->name, value);
        return 0;
    });
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
    auto* type = reinterpret_cast<PyTypeObject*>(state().propertyDescriptorType.ptr());
    PyObject* self = type->tp_alloc(type, 0);
    if (!self) throw py::error_already_set();
    auto* d = reinterpret_cast<PropertyDescriptorObject*>(self);
    d->shape = shape;
    new (&d->cache) korb::Client::ReadCache();
    d->name = nullptr;
    d->doc = nullptr;
    py::object owned = py::reinterpret_steal<py::object>(self);
    d->name = new std::string(name);
    d->nameView = *d->name;
    d->doc = new std::string(doc);
    return owned;
}

// The Python class for a registered class: a subclass of the Python class
// of its superclass, or of velcg.Object. Its instances are not tracked by
// the garbage collector: they refer to no Python object.
PythonClass& pythonClassFor(const vel::mi::HandleClass& cls) {
    ModuleState& module = state();
    const std::string& name = cls.getQualifiedName();
    if (auto it = module.classesByName.find(name); it != module.classesByName.end()) return *it->second;
    // The host's own mixin classes ("plexo.mixin.Heterogeneous") have no
    // members; their subclasses derive from velcg.Object directly.
    py::object base = module.objectBaseType;
    const vel::mi::HandleClass* super = client().getSuperclass(cls);
    if (super && super->getQualifiedName().rfind("plexo.", 0) != 0) base = pythonClassFor(*super).type;
    auto python = std::make_unique<PythonClass>(PythonClass{name, py::object()});
    // The type keeps a copy of its name.
    static_assert(PY_VERSION_HEX >= 0x030B0000,
                  "before Python 3.11 a type points to the name it was made with");
    const std::string typeName = "velcg." + shortNameOf(name);
    // The dealloc of velcg.Object itself, rather than the generic one of
    // heap types, which would look for it along the bases each time.
    PyType_Slot slots[] = {{Py_tp_doc, const_cast<char*>(cls.getDescription().c_str())},
                           {Py_tp_dealloc, reinterpret_cast<void*>(&objectDealloc)},
                           {0, nullptr}};
    PyType_Spec typeShape = {typeName.c_str(), 0, 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
    PyObject* type = PyType_FromSpecWithBases(&typeShape, py::make_tuple(base).ptr());
    if (!type) throw py::error_already_set();
    py::object owned = py::reinterpret_steal<py::object>(type);
    for (const auto& p : cls.getProperties()) {
        const reference::MemberDoc* doc = reference::findMemberDoc(name, p.name);
        owned.attr(py::str(p.name)) = makePropertyDescriptor(
            p.name, doc ? doc->summary + (p.setter ? "" : " Read-only.") : "",
            shapeOf(p.getter->hostTypeName(), p.getter->deliversOneObject(), p.elementClass));
    }
    for (const auto& m : cls.getMethods()) {
        const reference::MemberDoc* doc = reference::findMemberDoc(name, m.name);
        owned.attr(py::str(m.name)) =
            py::cast(MethodDescriptor{m.name, doc ? doc->summary : "", textSignature(doc)});
    }
    python->type = std::move(owned);
    return *module.classesByName.emplace(name, std::move(python)).first->second;
}

[[noreturn]] void rethrowConversion(const WrongPythonType& e, const std::string& identifier,
                                    std::vector<std::string> leading) {
    leading.push_back(
        vel::diag::Diagnostic::fromCatalog(korb::messages::TypeMismatch, {e.expected, e.what}).message());
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
    vel::diag::throwError(korb::messages::UnknownProperty, {name, cls.getQualifiedName()});
}

void setAttribute(const ObjectState& self, const std::string& name, py::handle value) {
    const vel::mi::HandleClass& cls = classOfRef(self.ref);
    const auto* property = client().findProperty(cls, name);
    if (!property) vel::diag::throwError(korb::messages::UnknownProperty, {name, cls.getQualifiedName()});
    // A read-only property: the client refuses any value with its own message.
    if (!property->setter) client().setProperty(self.ref, name, *tuvArray::empty());
    tuvArrayPtr converted;
    try {
        converted = fromPython(value, property->setter->hostTypeName());
    } catch (const WrongPythonType& e) {
        rethrowConversion(e, korb::messages::InvalidPropertyValue, {name, cls.getQualifiedName()});
    }
    client().setProperty(self.ref, name, *converted);
}

py::object callMethod(const BoundMethod& self, py::args args) {
    const vel::mi::HandleClass& cls = classOfRef(self.ref);
    const auto* method = client().findMethod(cls, self.name);
    if (!method) vel::diag::throwError(korb::messages::UnknownMethod, {self.name, cls.getQualifiedName()});
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
            rethrowConversion(e, korb::messages::InvalidMethodArgument,
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

// The object behind a capsule named "vel.mi.Handle" holding a handle
// pointer, of the Python class of its own class.
py::object fromCapsule(py::handle given) {
    if (!PyCapsule_CheckExact(given.ptr())) throw py::type_error("velcg.Object takes a capsule");
    const auto capsule = py::reinterpret_borrow<py::capsule>(given);
    const std::string name = capsule.name() ? capsule.name() : "";
    if (name != "vel.mi.Handle") vel::diag::throwError(messages::Python::NotAHandleCapsule, {name});
    auto* handle = static_cast<vel::mi::Handle*>(capsule.get_pointer());
    if (!handle) vel::diag::throwError(korb::messages::InvalidHandle, {});
    client().classOf(*handle);
    return wrap(handle->makeRef());
}

// --- The slots of velcg.Object --------------------------------------------

// velcg.Object.__new__: with no argument, an instance that holds no native
// object (every use of it raises TypeError); with a capsule, the object
// behind it.
PyObject* objectNew(PyTypeObject* type, PyObject* args, PyObject* kwargs) {
    return guarded<PyObject*>(nullptr, [&]() -> PyObject* {
        static const char* keywords[] = {"handle", nullptr};
        PyObject* handle = nullptr;
        if (!PyArg_ParseTupleAndKeywords(args, kwargs, "|O:Object", const_cast<char**>(keywords), &handle))
            return nullptr;
        if (handle) return fromCapsule(handle).release().ptr();
        PyObject* object = type->tp_alloc(type, 0);
        if (object) new (&instanceOf(object)->state) ObjectState();
        return object;
    });
}

// velcg.Object(capsule) made the object in __new__; velcg.Object() is refused.
int objectInit(PyObject* self, PyObject*, PyObject*) {
    if (instanceOf(self)->state.cls) return 0;
    PyErr_SetString(PyExc_TypeError, "velcg.Object() needs a capsule named \"vel.mi.Handle\"");
    return -1;
}

void objectDealloc(PyObject* self) {
    ObjectState& state = instanceOf(self)->state;
    // Under the interpreter lock, like every use of the slot.
    if (std::atomic<void*>* slot = state.ref.scriptObjectSlot())
        if (slot->load(std::memory_order_relaxed) == self) slot->store(nullptr, std::memory_order_relaxed);
    state.~ObjectState();
    PyTypeObject* type = Py_TYPE(self);
    type->tp_free(self);
    Py_DECREF(type); // instances of heap types hold their type
}

// Members are found in the class's dictionary; any other name is asked of
// the object system, which knows it or raises velcg.UnknownMemberError.
PyObject* objectGetAttr(PyObject* self, PyObject* name) {
    PyObject* found = PyObject_GenericGetAttr(self, name);
    const ModuleState* current = ModuleState::current();
    if (found || !PyErr_ExceptionMatches(PyExc_AttributeError) ||
        (current && PyErr_ExceptionMatches(current->errorClass.ptr())))
        return found;
    PyErr_Clear();
    return guarded<PyObject*>(nullptr, [&] {
        return getAttribute(self, py::reinterpret_borrow<py::str>(name).cast<std::string>()).release().ptr();
    });
}

int objectSetAttr(PyObject* self, PyObject* name, PyObject* value) {
    if (!value) return PyObject_GenericSetAttr(self, name, value);
    return guarded(-1, [&] {
        setAttribute(stateOf(self), py::reinterpret_borrow<py::str>(name).cast<std::string>(), value);
        return 0;
    });
}

PyObject* objectRepr(PyObject* self) {
    return guarded<PyObject*>(nullptr, [&] {
        const ObjectState& state = stateOf(self);
        const std::string text = "<" + state.className() + (state.ref ? " object>" : " object (destroyed)>");
        return py::str(text).release().ptr();
    });
}

Py_hash_t objectHash(PyObject* self) {
    return guarded<Py_hash_t>(-1, [&] {
        const auto hash = static_cast<Py_hash_t>(std::hash<const void*>()(stateOf(self).ref.identity()));
        return hash == -1 ? -2 : hash;
    });
}

// Equal when both are velcg objects for the same native object.
PyObject* objectCompare(PyObject* self, PyObject* other, int op) {
    if (op != Py_EQ && op != Py_NE) Py_RETURN_NOTIMPLEMENTED;
    return guarded<PyObject*>(nullptr, [&] {
        const ObjectState& state = stateOf(self);
        const bool same = isObjectPointer(other) && state.ref.sameObject(stateOf(other).ref);
        return py::bool_(same == (op == Py_EQ)).release().ptr();
    });
}

PyObject* objectDir(PyObject* self, PyObject*) {
    return guarded<PyObject*>(nullptr, [&] { return py::cast(memberNames(self)).release().ptr(); });
}

py::object makeObjectType() {
    static PyMethodDef methods[] = {{"__dir__", &objectDir, METH_NOARGS, nullptr},
                                    {nullptr, nullptr, 0, nullptr}};
    static const char* const doc = R"(A native object of the object system.

Its properties are attributes (readable, and writable where the class allows)
and its methods are callable by name. It does not own the native object:
once that is destroyed, every use raises velcg.Error ("Korb:InvalidHandle").
velcg.Object(capsule) gives the object behind a capsule named "vel.mi.Handle"
that holds a native handle pointer.)";
    static PyType_Slot slots[] = {{Py_tp_new, reinterpret_cast<void*>(&objectNew)},
                                  {Py_tp_init, reinterpret_cast<void*>(&objectInit)},
                                  {Py_tp_dealloc, reinterpret_cast<void*>(&objectDealloc)},
                                  {Py_tp_getattro, reinterpret_cast<void*>(&objectGetAttr)},
                                  {Py_tp_setattro, reinterpret_cast<void*>(&objectSetAttr)},
                                  {Py_tp_repr, reinterpret_cast<void*>(&objectRepr)},
                                  {Py_tp_hash, reinterpret_cast<void*>(&objectHash)},
                                  {Py_tp_richcompare, reinterpret_cast<void*>(&objectCompare)},
                                  {Py_tp_methods, methods},
                                  {Py_tp_doc, const_cast<char*>(doc)},
                                  {0, nullptr}};
    static PyType_Spec typeShape = {"velcg.Object", sizeof(ObjectInstance), 0,
                                    Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
    PyObject* type = PyType_FromSpec(&typeShape);
    if (!type) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(type);
}

} // namespace

bool isObject(py::handle target) { return isObjectPointer(target.ptr()); }

const ObjectState& stateOf(py::handle target) {
    if (!isObjectPointer(target.ptr()))
        throw py::type_error(std::string("expected a velcg object, not ") + Py_TYPE(target.ptr())->tp_name);
    const ObjectState& state = instanceOf(target.ptr())->state;
    if (!state.cls) throw py::type_error("the velcg object was never initialized");
    return state;
}

py::custom_type_setup nativeInstancesOnly() {
    return py::custom_type_setup(
        [](PyHeapTypeObject* type) { type->ht_type.tp_flags |= Py_TPFLAGS_DISALLOW_INSTANTIATION; });
}

vel::mi::Handle& live(const vel::mi::Access& access) {
    vel::mi::Handle* object = access.object();
    if (!object) vel::diag::throwError(korb::messages::InvalidHandle, {});
    return *object;
}

void requireLive(const vel::mi::HandleRef& ref) {
    if (!ref) vel::diag::throwError(korb::messages::InvalidHandle, {});
}

py::object wrap(const vel::mi::HandleRef& ref) {
    if (!ref.identity()) return py::none();
    // An embedding runtime may wrap its globals before a script imported the
    // module, or while another thread imports it: the import waits for that.
    const ModuleState* current = ModuleState::current();
    if (!current || !current->defined) py::module_::import("velcg");
    if (PyObject* kept = keptObject(ref.scriptObjectSlot(), ref.lifetime().get())) {
        auto object = py::reinterpret_steal<py::object>(kept);
        requireLive(ref);
        return object;
    }
    return py::reinterpret_steal<py::object>(objectFor(ref, typeNameOf(ref)));
}

void defineObjects(py::module_& module) {
    state().objectBaseType = makeObjectType();
    module.attr("Object") = state().objectBaseType;

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

    state().propertyDescriptorType = makePropertyDescriptorType();
    module.attr("PropertyDescriptor") = state().propertyDescriptorType;
    py::class_<MethodDescriptor> methodDescriptor(module, "MethodDescriptor", nativeInstancesOnly(),
                                                  "A method of an object-system class.");
    methodDescriptor
        .def("__get__",
             [](const MethodDescriptor& self, py::handle target, py::handle) -> py::object {
                 if (target.is_none()) return py::cast(self);
                 const ObjectState& state = stateOf(target);
                 requireLive(state.ref);
                 return py::cast(BoundMethod{state.ref, state.className(), self.name, self.doc});
             })
        // Called on an object, as Class.method(obj, ...), it calls the
        // object's method.
        .def("__call__",
             [](const MethodDescriptor& self, py::handle target, py::args args) {
                 const ObjectState& state = stateOf(target);
                 return callMethod(BoundMethod{state.ref, state.className(), self.name, self.doc}, args);
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
        module.attr(shortNameOf(cls->getQualifiedName()).c_str()) = pythonClassFor(*cls).type;
}

} // namespace VelCG::python
