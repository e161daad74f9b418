#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "vel/HostExport.hpp"

namespace korb {
class GetterBinder;
class SetterBinder;
class MethodBinder;
class ObjectSystem;
} // namespace korb

namespace vel::mi {

// The object system's record of one handle class: its names, superclass,
// abstract flag, and the properties and methods that scripts can use. A
// record is created by its package, then registered with the object system,
// which gives it its qualified name ("Package.ShortName") and asks it to
// declare its members through registerMembers().
class VELHOST_API HandleClass {
public:
    struct Property {
        std::string name;
        std::unique_ptr<korb::GetterBinder> getter;
        std::unique_ptr<korb::SetterBinder> setter; // null for a read-only property
        // For a property holding objects, the qualified class that every
        // element is (or derives from); empty for other properties.
        std::string elementClass;
        bool isReadOnly() const { return !setter; }
    };
    struct Method {
        std::string name;
        std::unique_ptr<korb::MethodBinder> binder;
    };

    HandleClass(std::string shortName, std::string description);
    virtual ~HandleClass();
    HandleClass(const HandleClass&) = delete;
    HandleClass& operator=(const HandleClass&) = delete;

    const std::string& getShortName() const { return shortName_; }
    const std::string& getDescription() const { return description_; }
    // "Package.ShortName" once registered; empty before.
    const std::string& getQualifiedName() const { return qualifiedName_; }
    // Empty when the class has no superclass.
    const std::string& getSuperclassName() const { return superclass_; }

    // An abstract class is never instantiated by scripts.
    virtual bool isAbstract() const;

    // For a package whose objects must not be touched while something else
    // works on them: while *busy is not zero, the object-system client calls
    // wait() before it reads, writes or calls a member of an object of this
    // class or of a class derived from it (the most derived class in the
    // chain that has a guard decides). wait() returns when the objects may
    // be used, or raises a diagnostic. Set before the class is registered;
    // none by default.
    //
    // With readersProceed, what keeps the objects busy only reads them:
    // property reads and calls of methods that only read (see
    // korb::MethodBinder::readsOnly) go ahead at once, and only property
    // writes and the other calls wait. The members that only read must then
    // be safe to run on two threads at once.
    struct AccessGuard {
        const std::atomic<int>* busy = nullptr;
        void (*wait)() = nullptr;
        bool readersProceed = false;
        explicit operator bool() const { return busy && wait; }
    };
    void setAccessGuard(AccessGuard guard) { accessGuard_ = guard; }
    const AccessGuard& getAccessGuard() const { return accessGuard_; }

    // Own members only, in registration order; see korb::Client for the
    // lookup that includes superclass members.
    const std::vector<Property>& getProperties() const { return properties_; }
    const std::vector<Method>& getMethods() const { return methods_; }
    const Property* findOwnProperty(const std::string& name) const;
    const Method* findOwnMethod(const std::string& name) const;

protected:
    // Declares superclass, properties and methods, in that order. Called
    // once, by the object system, when the class is registered.
    virtual void registerMembers() = 0;

    void setSuperclass(std::string qualifiedName);
    // A second member of one name raises "Korb:DuplicateMember".
    void addProperty(std::string name, std::unique_ptr<korb::GetterBinder> getter,
                     std::unique_ptr<korb::SetterBinder> setter = nullptr);
    void addMethod(std::string name, std::unique_ptr<korb::MethodBinder> binder);
    // Raises "Korb:UnknownProperty" unless the class itself declares name.
    void setElementClass(const std::string& propertyName, std::string elementClass);

private:
    friend class korb::ObjectSystem;

    std::string shortName_;
    std::string description_;
    std::string qualifiedName_;
    std::string superclass_;
    std::vector<Property> properties_;
    std::vector<Method> methods_;
    AccessGuard accessGuard_;
};

} // namespace vel::mi
