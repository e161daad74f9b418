#pragma once

#include <string>
#include <vector>

#include "korb/Binders.hpp"
#include "vel/HostExport.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/mi/HandleClass.hpp"
#include "vel/tuvArray.hpp"

namespace korb {

class ObjectSystem;

// What a host (a script runtime, a tool) uses to work with native objects by
// name: find classes, wrap objects as host values, list, read and write
// properties and call methods. Members of superclasses are found as well as
// the class's own; a class's own member hides an inherited one of the same
// name.
//
// Objects are addressed by HandleRef or by a 1-by-1 host array of handles, as
// scripts hold them. Every failure is a diagnostic:
//   "Korb:InvalidHandle"           null reference or destroyed object
//   "Korb:UnknownClass"            the object's class is not registered
//   "Korb:UnknownProperty"         no such property (arguments: name, class)
//   "Korb:UnknownMethod"           no such method (arguments: name, class)
//   "Korb:ReadOnlyProperty"        write to a property without setter
//   "Korb:ObjectLocked"            write to a locked object
//   "Korb:InvalidPropertyValue"    value of the wrong type for the property
//   "Korb:WrongNumberOfArguments"  method called with the wrong argument count
class VELHOST_API Client {
public:
    explicit Client(ObjectSystem& system) : system_(system) {}

    ObjectSystem& getObjectSystem() const { return system_; }

    const vel::mi::HandleClass* findClass(const std::string& qualifiedName) const;
    const vel::mi::HandleClass& classOf(const vel::mi::Handle& object) const;
    // True when the object's class is qualifiedName or derives from it.
    bool isA(const vel::mi::Handle& object, const std::string& qualifiedName) const;

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
    const vel::mi::HandleClass::Property& findProperty(const vel::mi::Handle& object,
                                                       const std::string& name) const;
    const vel::mi::HandleClass::Method& findMethod(const vel::mi::Handle& object,
                                                   const std::string& name) const;

    ObjectSystem& system_;
};

} // namespace korb
