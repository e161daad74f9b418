#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vel/HostExport.hpp"

namespace vel::mi {
class HandleClass;
}

namespace korb {

class Client;
class PackageInfo;
namespace detail {
struct ClassEntry;
class TypeNameCache;
} // namespace detail

// The host's registry of packages and classes. It starts out knowing the
// package "plexo.mixin" with the abstract class "plexo.mixin.Heterogeneous".
//
// Packages are added and terminated on the host's thread; lookups are safe
// from any thread while no package is being added or removed.
class VELHOST_API ObjectSystem {
public:
    static ObjectSystem& instance();

    ObjectSystem();
    ~ObjectSystem();
    ObjectSystem(const ObjectSystem&) = delete;
    ObjectSystem& operator=(const ObjectSystem&) = delete;

    // Adds the package and registers its classes. A package name already
    // known raises "Korb:DuplicatePackage" and leaves the registry unchanged;
    // so does a failure while its classes register.
    void addPackage(std::unique_ptr<PackageInfo> package);

    // Registers one class of the package being added (only valid inside
    // PackageInfo::registerClasses). Raises "Korb:DuplicateClass" for a
    // qualified name already known and "Korb:UnknownSuperclass" when the
    // class names a superclass that is not registered yet.
    void registerClass(std::unique_ptr<vel::mi::HandleClass> handleClass);

    // Removes every class of the package; the package stays known by name.
    void removeClasses(const std::string& packageName);

    // Null when unknown.
    PackageInfo* findPackage(const std::string& name) const;
    const vel::mi::HandleClass* findClass(const std::string& qualifiedName) const;

    std::vector<std::string> getPackageNames() const;
    // The package's classes in registration order (empty when unknown).
    std::vector<const vel::mi::HandleClass*> getPackageClasses(const std::string& packageName) const;

    // The client through which libraries and tools use the registry.
    Client& getPublicClient();

private:
    friend class Client;
    // The resolved members of a class registered here; null for any other.
    const detail::ClassEntry* entryOf(const vel::mi::HandleClass& cls) const;
    // The entry of the class an object's type name names; null when unknown.
    // Remembered per name pointer until the registry changes.
    const detail::ClassEntry* entryForTypeName(const char* typeName) const;
    // Resolves the entry of a newly registered class, and again those whose
    // chain was cut (all of them when `all`).
    void resolveEntries(const vel::mi::HandleClass* added, bool all);

    struct Impl;
    std::unique_ptr<Impl> impl_;
    // Read by the client inline; see entryForTypeName.
    std::unique_ptr<detail::TypeNameCache> typeNames_;
    // Counts the changes of the registry, after which the client's read
    // caches (Client::ReadCache) resolve again.
    std::atomic<std::uint64_t> version_{0};
};

} // namespace korb
