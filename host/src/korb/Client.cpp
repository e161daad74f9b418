#include "korb/Client.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "ClassEntry.hpp"
#include "korb/Binders.hpp"
#include "korb/Messages.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/mi/HandleClass.hpp"

namespace korb {

namespace {
[[noreturn]] void invalidHandle() { vel::diag::throwError(messages::InvalidHandle, {}); }

// The object of an open access, which keeps it from being freed meanwhile.
inline vel::mi::Handle& live(const vel::mi::Access& access) {
    vel::mi::Handle* h = access.object();
    if (!h) invalidHandle();
    return *h;
}

// The class chain of a class, most derived first. Bounded so that a cycle
// of superclass names cannot loop forever.
std::vector<const vel::mi::HandleClass*> chainOf(const ObjectSystem& system,
                                                 const vel::mi::HandleClass& cls) {
    std::vector<const vel::mi::HandleClass*> chain{&cls};
    while (chain.size() < 64 && !chain.back()->getSuperclassName().empty()) {
        const auto* super = system.findClass(chain.back()->getSuperclassName());
        if (!super) break;
        chain.push_back(super);
    }
    return chain;
}

[[noreturn]] void unknownProperty(const std::string& name, const vel::mi::HandleClass& cls) {
    vel::diag::throwError(messages::UnknownProperty, {name, cls.getQualifiedName()});
}

[[noreturn]] void unknownClass(const char* name) {
    vel::diag::throwError(messages::UnknownClass, {name ? name : ""});
}

// The member along the class chain of the object, the most derived first.
const vel::mi::HandleClass::Property& requireProperty(const Client& client, const vel::mi::Handle& object,
                                                      const std::string& name) {
    const auto& cls = client.classOf(object);
    if (const auto* p = client.findProperty(cls, name)) return *p;
    unknownProperty(name, cls);
}

const vel::mi::HandleClass::Method& requireMethod(const Client& client, const vel::mi::Handle& object,
                                                  const std::string& name) {
    const auto& cls = client.classOf(object);
    if (const auto* m = client.findMethod(cls, name)) return *m;
    vel::diag::throwError(messages::UnknownMethod, {name, cls.getQualifiedName()});
}

// Members along the chain, superclass members first, each name once at the
// place of its first declaration, described by its most derived declaration.
template <class Info, class Members, class Describe>
std::vector<Info> describeMembers(const std::vector<const vel::mi::HandleClass*>& chain, Members members,
                                  Describe describe) {
    std::vector<Info> out;
    for (auto it = chain.rbegin(); it != chain.rend(); ++it)
        for (const auto& m : members(**it)) {
            Info info = describe(m, (*it)->getQualifiedName());
            auto same = std::find_if(out.begin(), out.end(), [&](const Info& i) { return i.name == m.name; });
            if (same == out.end())
                out.push_back(std::move(info));
            else
                *same = std::move(info);
        }
    return out;
}
} // namespace

std::vector<const vel::mi::HandleClass*> Client::getClasses(const std::string& packageName) const {
    return system_.getPackageClasses(packageName);
}

const vel::mi::HandleClass* Client::getSuperclass(const vel::mi::HandleClass& cls) const {
    if (cls.getSuperclassName().empty()) return nullptr;
    return system_.findClass(cls.getSuperclassName());
}

std::vector<PropertyInfo> Client::describeProperties(const vel::mi::HandleClass& cls) const {
    return describeMembers<PropertyInfo>(
        chainOf(system_, cls), [](const vel::mi::HandleClass& c) -> const auto& { return c.getProperties(); },
        [](const vel::mi::HandleClass::Property& p, const std::string& owner) {
            PropertyInfo info;
            info.name = p.name;
            info.hostType = p.getter->hostTypeName();
            info.readOnly = p.isReadOnly();
            if (p.setter) info.setterType = p.setter->hostTypeName();
            info.elementClass = p.elementClass;
            info.oneObject = p.getter->deliversOneObject();
            info.definedBy = owner;
            return info;
        });
}

std::vector<MethodInfo> Client::describeMethods(const vel::mi::HandleClass& cls) const {
    return describeMembers<MethodInfo>(
        chainOf(system_, cls), [](const vel::mi::HandleClass& c) -> const auto& { return c.getMethods(); },
        [](const vel::mi::HandleClass::Method& m, const std::string& owner) {
            return MethodInfo{m.name, m.binder->argumentTypes(), m.binder->resultType(),
                              m.binder->returnsOneObject(), owner};
        });
}

const vel::mi::HandleClass::Property* Client::findProperty(const vel::mi::HandleClass& cls,
                                                           const std::string& name) const {
    if (const auto* entry = system_.entryOf(cls)) return entry->properties.find(name);
    // A class not registered with this client's registry: walk its chain.
    for (const auto* c : chainOf(system_, cls))
        if (const auto* p = c->findOwnProperty(name)) return p;
    return nullptr;
}

const vel::mi::HandleClass::Method* Client::findMethod(const vel::mi::HandleClass& cls,
                                                       const std::string& name) const {
    if (const auto* entry = system_.entryOf(cls)) return entry->methods.find(name);
    for (const auto* c : chainOf(system_, cls))
        if (const auto* m = c->findOwnMethod(name)) return m;
    return nullptr;
}

const std::string& Client::getElementClass(const vel::mi::Handle& object, const std::string& name) const {
    return requireProperty(*this, object, name).elementClass;
}

const vel::mi::HandleClass* Client::findClass(const std::string& qualifiedName) const {
    return system_.findClass(qualifiedName);
}

const vel::mi::HandleClass& Client::classOf(const vel::mi::Handle& object) const {
    const char* name = object.getFullyQualifiedKorbTypeName();
    const auto* entry = system_.entryForTypeName(name);
    if (!entry) unknownClass(name);
    return *entry->cls;
}

bool Client::isA(const vel::mi::Handle& object, const std::string& qualifiedName) const {
    for (const auto* c : chainOf(system_, classOf(object)))
        if (c->getQualifiedName() == qualifiedName) return true;
    return false;
}

tuvArrayPtr Client::wrap(vel::mi::Handle& object) const {
    classOf(object);
    return tuvArray::objects({object.makeRef()});
}

namespace {
// Member names along the chain, superclass members first, each name once.
template <class Members>
std::vector<std::string> memberNames(const std::vector<const vel::mi::HandleClass*>& chain, Members members) {
    std::vector<std::string> names;
    for (auto it = chain.rbegin(); it != chain.rend(); ++it)
        for (const auto& m : members(**it))
            if (std::find(names.begin(), names.end(), m.name) == names.end()) names.push_back(m.name);
    return names;
}
} // namespace

std::vector<std::string> Client::getPropertyNames(const vel::mi::Handle& object) const {
    return memberNames(
        chainOf(system_, classOf(object)),
        [](const vel::mi::HandleClass& c) -> const auto& { return c.getProperties(); });
}

std::vector<std::string> Client::getMethodNames(const vel::mi::Handle& object) const {
    return memberNames(
        chainOf(system_, classOf(object)),
        [](const vel::mi::HandleClass& c) -> const auto& { return c.getMethods(); });
}

bool Client::hasProperty(const vel::mi::Handle& object, const std::string& name) const {
    return findProperty(classOf(object), name) != nullptr;
}

bool Client::isReadOnly(const vel::mi::Handle& object, const std::string& name) const {
    return requireProperty(*this, object, name).isReadOnly();
}

const std::string& Client::getPropertyType(const vel::mi::Handle& object, const std::string& name) const {
    return requireProperty(*this, object, name).getter->hostTypeName();
}

// Through the entry remembered for the type-name pointer, or found by name.
std::pair<const detail::ClassEntry*, const vel::mi::HandleClass::Property*> Client::resolveRead(
    const char* typeName, std::string_view name) const {
    const auto* entry = system_.typeNames_->find(typeName);
    if (!entry && !(entry = system_.entryForTypeName(typeName))) unknownClass(typeName);
    const auto* property = entry->properties.find(name);
    if (!property) unknownProperty(std::string(name), *entry->cls);
    return {entry, property};
}

// The property of the object by name, through its class's resolved entry,
// its guard run for a read.
const vel::mi::HandleClass::Property& Client::propertyToRead(vel::mi::Handle& object,
                                                             std::string_view name) const {
    const auto [entry, property] = resolveRead(object.getFullyQualifiedKorbTypeName(), name);
    entry->enter(true);
    return *property;
}

tuvArrayPtr Client::getProperty(const vel::mi::HandleRef& ref, const std::string& name) const {
    const vel::mi::Access access(ref);
    vel::mi::Handle& object = live(access);
    return propertyToRead(object, name).getter->getArray(object);
}

void Client::readProperty(const vel::mi::HandleRef& ref, std::string_view name, ValueSink& sink) const {
    ReadCache once;
    readProperty(ref, name, once, sink);
}

void Client::readProperty(const vel::mi::HandleRef& ref, std::string_view name, ReadCache& cache,
                          ValueSink& sink) const {
    const vel::mi::Access access(ref);
    vel::mi::Handle& object = live(access);
    // A type name stands for one class entry until the registry changes.
    const char* typeName = object.getFullyQualifiedKorbTypeName();
    const std::uint64_t version = system_.version_.load(std::memory_order_acquire);
    if (!cache.entry_ || typeName != cache.typeName_ || version != cache.registryVersion_) {
        const auto [entry, property] = resolveRead(typeName, name);
        cache.typeName_ = typeName;
        cache.entry_ = entry;
        cache.property_ = property;
        cache.registryVersion_ = version;
    }
    cache.entry_->enter(true);
    cache.property_->getter->read(object, sink);
}

void Client::enter(const vel::mi::Handle& object, bool reading) const {
    if (const auto* entry = system_.entryForTypeName(object.getFullyQualifiedKorbTypeName()))
        entry->enter(reading);
}

Value Client::getPropertyValue(const vel::mi::HandleRef& ref, const std::string& name) const {
    const vel::mi::Access access(ref);
    vel::mi::Handle& object = live(access);
    const auto& property = requireProperty(*this, object, name);
    enter(object, true);
    return property.getter->getValue(object);
}

void Client::setProperty(const vel::mi::HandleRef& ref, const std::string& name,
                         const tuvArray& value) const {
    const vel::mi::Access access(ref);
    vel::mi::Handle& object = live(access);
    const auto& prop = requireProperty(*this, object, name);
    const std::string& cls = classOf(object).getQualifiedName();
    if (prop.isReadOnly()) vel::diag::throwError(messages::ReadOnlyProperty, {name, cls});
    if (object.isLocked()) vel::diag::throwError(messages::ObjectLocked, {name, cls});
    enter(object, false);
    object.preSetPropFcn(name.c_str());
    try {
        prop.setter->set(object, value);
    } catch (const vel::diag::Exception& e) {
        if (!detail::isConversionFailure(e.identifier())) throw;
        vel::diag::throwError(messages::InvalidPropertyValue, {name, cls, e.diagnostic().message()});
    }
    object.postSetPropFcn(name.c_str());
}

tuvArrayPtr Client::callMethod(const vel::mi::HandleRef& ref, const std::string& name,
                               const std::vector<tuvArrayPtr>& args) const {
    const vel::mi::Access access(ref);
    vel::mi::Handle& object = live(access);
    const auto& method = requireMethod(*this, object, name);
    enter(object, method.binder->readsOnly());
    try {
        return method.binder->call(object, args);
    } catch (const vel::diag::Exception& e) {
        // The binder raises "Korb:InvalidArgument" before the native method
        // runs; the caller also needs to know which method of which class.
        if (e.identifier() != messages::InvalidArgument || e.arguments().size() != 2) throw;
        vel::diag::throwError(messages::InvalidMethodArgument,
                              {name, classOf(object).getQualifiedName(), e.arguments()[0], e.arguments()[1]});
    }
}

vel::mi::HandleRef Client::refFromArray(const tuvArray& object) {
    if (object.classId() != tuvClass::Object || !object.isScalar()) invalidHandle();
    return object.handles().front();
}

tuvArrayPtr Client::getProperty(const tuvArray& object, const std::string& name) const {
    return getProperty(refFromArray(object), name);
}

void Client::setProperty(const tuvArray& object, const std::string& name, const tuvArray& value) const {
    setProperty(refFromArray(object), name, value);
}

tuvArrayPtr Client::callMethod(const tuvArray& object, const std::string& name,
                               const std::vector<tuvArrayPtr>& args) const {
    return callMethod(refFromArray(object), name, args);
}

} // namespace korb
