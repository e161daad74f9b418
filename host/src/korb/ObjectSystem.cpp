#include "korb/ObjectSystem.hpp"

#include <map>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "ClassEntry.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/Messages.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace korb {

namespace {
class MixinPackage final : public PackageInfo {
public:
    const char* getName() const override { return "plexo.mixin"; }
    void registerClasses(ObjectSystem& system) override {
        system.registerClass(
            ClassInfo::make("Heterogeneous", "Mixin for heterogeneous arrays", nullptr, true));
    }
};
} // namespace

struct ObjectSystem::Impl {
    mutable std::recursive_mutex mutex;
    std::map<std::string, std::unique_ptr<PackageInfo>> packages;
    std::vector<std::string> packageOrder;
    // Qualified name -> class record.
    std::unordered_map<std::string, std::unique_ptr<vel::mi::HandleClass>> classes;
    // Package -> its classes' qualified names, in registration order.
    std::map<std::string, std::vector<std::string>> classOrder;
    // The package whose classes are being registered, if any.
    std::string registering;
    std::unique_ptr<Client> client;

    // Resolved members of every registered class, by record and by
    // qualified name (views of the records' own names).
    std::unordered_map<const vel::mi::HandleClass*, std::unique_ptr<detail::ClassEntry>> entries;
    std::unordered_map<std::string_view, const detail::ClassEntry*> entriesByName;
};

ObjectSystem::ObjectSystem()
    : impl_(std::make_unique<Impl>()), typeNames_(std::make_unique<detail::TypeNameCache>()) {
    impl_->client = std::make_unique<Client>(*this);
    addPackage(std::make_unique<MixinPackage>());
}

ObjectSystem::~ObjectSystem() = default;

ObjectSystem& ObjectSystem::instance() {
    // Never destroyed: libraries unload (and objects die) during static
    // destruction in an order the host does not control.
    static ObjectSystem* system = new ObjectSystem;
    return *system;
}

Client& ObjectSystem::getPublicClient() { return *impl_->client; }

void ObjectSystem::addPackage(std::unique_ptr<PackageInfo> package) {
    std::lock_guard lock(impl_->mutex);
    std::string name = package->getName();
    if (impl_->packages.count(name)) vel::diag::throwError(messages::DuplicatePackage, {name});
    impl_->registering = name;
    try {
        package->registerClasses(*this);
    } catch (...) {
        // A package is added whole or not at all.
        impl_->registering.clear();
        removeClasses(name);
        impl_->classOrder.erase(name);
        throw;
    }
    impl_->registering.clear();
    impl_->packageOrder.push_back(name);
    impl_->packages.emplace(name, std::move(package));
}

void ObjectSystem::registerClass(std::unique_ptr<vel::mi::HandleClass> cls) {
    std::lock_guard lock(impl_->mutex);
    if (impl_->registering.empty()) vel::diag::throwError(messages::NotRegistering, {cls->getShortName()});
    std::string qualified = impl_->registering + "." + cls->getShortName();
    if (impl_->classes.count(qualified)) vel::diag::throwError(messages::DuplicateClass, {qualified});
    cls->qualifiedName_ = qualified;
    cls->registerMembers();
    const std::string& super = cls->getSuperclassName();
    if (!super.empty() && !impl_->classes.count(super))
        vel::diag::throwError(messages::UnknownSuperclass, {qualified, super});
    impl_->classOrder[impl_->registering].push_back(qualified);
    const vel::mi::HandleClass* added = cls.get();
    impl_->classes.emplace(qualified, std::move(cls));
    resolveEntries(added, false);
}

void ObjectSystem::removeClasses(const std::string& packageName) {
    std::lock_guard lock(impl_->mutex);
    auto it = impl_->classOrder.find(packageName);
    if (it == impl_->classOrder.end()) return;
    for (const auto& name : it->second) impl_->classes.erase(name);
    it->second.clear();
    resolveEntries(nullptr, true);
}

void ObjectSystem::resolveEntries(const vel::mi::HandleClass* added, bool all) {
    using Property = vel::mi::HandleClass::Property;
    using Method = vel::mi::HandleClass::Method;
    auto resolve = [&](const vel::mi::HandleClass& cls) {
        // The chain most derived first, bounded so that a cycle of
        // superclass names cannot loop forever.
        std::vector<const vel::mi::HandleClass*> chain{&cls};
        bool complete = true;
        while (chain.size() < 64 && !chain.back()->getSuperclassName().empty()) {
            auto it = impl_->classes.find(chain.back()->getSuperclassName());
            if (it == impl_->classes.end()) {
                complete = false;
                break;
            }
            chain.push_back(it->second.get());
        }
        std::vector<const Property*> properties;
        std::vector<const Method*> methods;
        vel::mi::HandleClass::AccessGuard guard;
        for (const auto* c : chain) {
            if (!guard) guard = c->getAccessGuard();
            for (const auto& p : c->getProperties()) properties.push_back(&p);
            for (const auto& m : c->getMethods()) methods.push_back(&m);
        }
        auto entry = std::make_unique<detail::ClassEntry>(
            detail::ClassEntry{&cls, detail::NameIndex<Property>(properties),
                               detail::NameIndex<Method>(methods), complete, guard});
        impl_->entriesByName[cls.getQualifiedName()] = entry.get();
        impl_->entries[&cls] = std::move(entry);
    };
    typeNames_->clear();
    version_.fetch_add(1, std::memory_order_release);
    if (all) {
        impl_->entries.clear();
        impl_->entriesByName.clear();
        for (const auto& [name, cls] : impl_->classes) resolve(*cls);
        return;
    }
    std::vector<const vel::mi::HandleClass*> cut;
    for (const auto& [cls, entry] : impl_->entries)
        if (!entry->complete) cut.push_back(cls);
    for (const auto* cls : cut) resolve(*cls);
    if (added) resolve(*added);
}

const detail::ClassEntry* ObjectSystem::entryOf(const vel::mi::HandleClass& cls) const {
    auto it = impl_->entries.find(&cls);
    return it == impl_->entries.end() ? nullptr : it->second.get();
}

const detail::ClassEntry* ObjectSystem::entryForTypeName(const char* typeName) const {
    if (!typeName) return nullptr;
    if (const auto* entry = typeNames_->find(typeName)) return entry;
    auto it = impl_->entriesByName.find(std::string_view(typeName));
    if (it == impl_->entriesByName.end()) return nullptr;
    typeNames_->remember(typeName, it->second);
    return it->second;
}

PackageInfo* ObjectSystem::findPackage(const std::string& name) const {
    std::lock_guard lock(impl_->mutex);
    auto it = impl_->packages.find(name);
    return it == impl_->packages.end() ? nullptr : it->second.get();
}

const vel::mi::HandleClass* ObjectSystem::findClass(const std::string& qualifiedName) const {
    std::lock_guard lock(impl_->mutex);
    auto it = impl_->classes.find(qualifiedName);
    return it == impl_->classes.end() ? nullptr : it->second.get();
}

std::vector<std::string> ObjectSystem::getPackageNames() const {
    std::lock_guard lock(impl_->mutex);
    return impl_->packageOrder;
}

std::vector<const vel::mi::HandleClass*> ObjectSystem::getPackageClasses(
    const std::string& packageName) const {
    std::lock_guard lock(impl_->mutex);
    std::vector<const vel::mi::HandleClass*> out;
    auto it = impl_->classOrder.find(packageName);
    if (it == impl_->classOrder.end()) return out;
    for (const auto& name : it->second) out.push_back(impl_->classes.at(name).get());
    return out;
}

} // namespace korb
