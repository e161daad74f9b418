#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korb/Value.hpp"
#include "vel/HostExport.hpp"
#include "vel/mi/HandleClass.hpp"
#include "vel/tuvArray.hpp"

namespace vel::mi {
class Handle;
class HandleRef;
} // namespace vel::mi

namespace korb {

class ObjectSystem;
class ValueSink;
namespace detail {
struct ClassEntry;
}

// A property of a class as the client resolves it along the class chain.
struct PropertyInfo {
    std::string name;
    std::string hostType; // the host type name of the value read
    bool readOnly = true;
    std::string setterType; // the host type name a write converts from; empty when read-only
    // For a property holding objects: the qualified class of its elements,
    // and whether it holds one object (or none) rather than a list.
    std::string elementClass;
    bool oneObject = false;
    std::string definedBy; // the qualified name of the class that declares it
};

// A method of a class as the client resolves it along the class chain.
struct MethodInfo {
    std::string name;
    std::vector<std::string> argumentTypes; // host type names, in order
    std::string resultType;                 // empty for a method that returns nothing
    bool returnsOneObject = false;
    std::string definedBy;
};

// What a host (a script runtime, a tool) uses to work with native objects by
// name: find classes, wrap objects as host values, list, read and write
// properties and call methods. Members of superclasses are found as well as
// the class's own; a class's own member hides an inherited one of the same
// name.
//
// Objects are addressed by HandleRef or by a 1-by-1 host array of handles, as
// scripts hold them. A read, write or call through a reference runs inside an
// access (vel::mi::Access): another thread may destroy the object meanwhile,
// and its destruction waits for the access to end. The members that take a
// Handle& do not: the caller keeps that object alive. Every failure is a
// diagnostic (arguments in brackets):
//   "Korb:InvalidHandle"           a null or dead reference (its object has
//                                  begun to die or its lifetime has ended), or
//                                  a host array that is not exactly one object
//   "Korb:UnknownClass"            the object's class is not registered (class)
//   "Korb:UnknownProperty"         no such property (name, class)
//   "Korb:UnknownMethod"           no such method (name, class)
//   "Korb:ReadOnlyProperty"        write to a property without setter (name, class)
//   "Korb:ObjectLocked"            write to a locked object (name, class)
//   "Korb:InvalidPropertyValue"    the value cannot become the property's
//                                  native type (name, class, cause)
//   "Korb:WrongNumberOfArguments"  method called with the wrong argument
//                                  count (expected, given)
//   "Korb:InvalidMethodArgument"   an argument cannot become the parameter's
//                                  native type (name, class, 1-based
//                                  position, cause)
//   "Korb:WrongClass"              the object is not of the native class its
//                                  class record binds to (class, native
//                                  type): a fault of the package, not of the
//                                  script
//   "Korb:NotAHandle"              a getter or method returned a native
//                                  object that is not a handle (native type)
// The cause is the message of the conversion's diagnostic: "Korb:TypeMismatch"
// (a value of the wrong class or shape), "Korb:InvalidHandle" (a destroyed
// object in the value) or "i18n:InvalidText" (text that is not valid
// Unicode). setProperty reports any of these three as InvalidPropertyValue,
// whether the conversion or the native setter raised it; callMethod reports
// them as InvalidMethodArgument when converting an argument raises them.
// Other diagnostics of the native getter, setter or method pass through
// unchanged, among them "i18n:InvalidText" from a getter whose native text is
// not valid UTF-8.
class VELHOST_API Client {
public:
    explicit Client(ObjectSystem& system) : system_(system) {}

    // What a read of one property name learnt from the class of the last
    // object it read (see readProperty): reading objects of that class again
    // skips the lookups by class and name. Any change of the registry makes
    // it learn again. It belongs to its caller, who uses it on one thread at
    // a time.
    class ReadCache {
    private:
        friend class Client;
        const char* typeName_ = nullptr;
        const detail::ClassEntry* entry_ = nullptr;
        const vel::mi::HandleClass::Property* property_ = nullptr;
        std::uint64_t registryVersion_ = 0;
    };

    ObjectSystem& getObjectSystem() const { return system_; }

    const vel::mi::HandleClass* findClass(const std::string& qualifiedName) const;
    const vel::mi::HandleClass& classOf(const vel::mi::Handle& object) const;
    // True when the object's class is qualifiedName or derives from it.
    bool isA(const vel::mi::Handle& object, const std::string& qualifiedName) const;

    // Class-level introspection, for tools and script runtimes that bind
    // every class generically. Classes in registration order; members in
    // lookup order (superclass members first, each name once, the most
    // derived declaration winning).
    std::vector<const vel::mi::HandleClass*> getClasses(const std::string& packageName) const;
    // Null for a class without a superclass (or whose superclass is unknown).
    const vel::mi::HandleClass* getSuperclass(const vel::mi::HandleClass& cls) const;
    std::vector<PropertyInfo> describeProperties(const vel::mi::HandleClass& cls) const;
    std::vector<MethodInfo> describeMethods(const vel::mi::HandleClass& cls) const;
    // The member along the class chain, the most derived first; null when none.
    const vel::mi::HandleClass::Property* findProperty(const vel::mi::HandleClass& cls,
                                                       const std::string& name) const;
    const vel::mi::HandleClass::Method* findMethod(const vel::mi::HandleClass& cls,
                                                   const std::string& name) const;
    // The class of the objects a property holds (see PropertyInfo); raises
    // "Korb:UnknownProperty" for an unknown name.
    const std::string& getElementClass(const vel::mi::Handle& object, const std::string& name) const;

    // The object as a 1-by-1 host array of handles; its class must be known.
    tuvArrayPtr wrap(vel::mi::Handle& object) const;

    // Names in lookup order: superclass members first, then the class's own.
    std::vector<std::string> getPropertyNames(const vel::mi::Handle& object) const;
    std::vector<std::string> getMethodNames(const vel::mi::Handle& object) const;
    bool hasProperty(const vel::mi::Handle& object, const std::string& name) const;
    bool isReadOnly(const vel::mi::Handle& object, const std::string& name) const;
    const std::string& getPropertyType(const vel::mi::Handle& object, const std::string& name) const;

    tuvArrayPtr getProperty(const vel::mi::HandleRef& object, const std::string& name) const;
    Value getPropertyValue(const vel::mi::HandleRef& object, const std::string& name) const;
    // The same read as getProperty, into sink inside the read's access,
    // without a host array where the getter can do without (see ValueSink).
    void readProperty(const vel::mi::HandleRef& object, std::string_view name, ValueSink& sink) const;
    // The same, for a caller that reads `name` again and again, through its
    // own cache; a read that fails leaves the cache as it was.
    void readProperty(const vel::mi::HandleRef& object, std::string_view name, ReadCache& cache,
                      ValueSink& sink) const;
    void setProperty(const vel::mi::HandleRef& object, const std::string& name, const tuvArray& value) const;
    tuvArrayPtr callMethod(const vel::mi::HandleRef& object, const std::string& name,
                           const std::vector<tuvArrayPtr>& args = {}) const;

    // The same, for an object held as a 1-by-1 host array of handles.
    tuvArrayPtr getProperty(const tuvArray& object, const std::string& name) const;
    void setProperty(const tuvArray& object, const std::string& name, const tuvArray& value) const;
    tuvArrayPtr callMethod(const tuvArray& object, const std::string& name,
                           const std::vector<tuvArrayPtr>& args = {}) const;

    // Resolves a host array holding exactly one live object.
    static vel::mi::HandleRef refFromArray(const tuvArray& object);

private:
    // The property by name of an object in use, its class's guard run for a
    // read; raises UnknownClass or UnknownProperty.
    const vel::mi::HandleClass::Property& propertyToRead(vel::mi::Handle& object,
                                                         std::string_view name) const;
    // The class entry for an object's type name and its property by name;
    // raises UnknownClass or UnknownProperty.
    std::pair<const detail::ClassEntry*, const vel::mi::HandleClass::Property*> resolveRead(
        const char* typeName, std::string_view name) const;
    // Runs the access guard of the object's class (see
    // vel::mi::HandleClass::setAccessGuard), if it has one, before a read
    // (`reading`) or a write.
    void enter(const vel::mi::Handle& object, bool reading) const;

    ObjectSystem& system_;
};

} // namespace korb
