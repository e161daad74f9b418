#include "korb/ObjectSystem.hpp"

#include <map>
#include <mutex>
#include <unordered_map>

#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
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
};

ObjectSystem::ObjectSystem() : impl_(std::make_unique<Impl>()) {
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
    if (impl_->packages.count(name)) vel::diag::throwError("Korb:DuplicatePackage", {name});
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
    if (impl_->registering.empty()) vel::diag::throwError("Korb:NotRegistering", {cls->getShortName()});
    std::string qualified = impl_->registering + "." + cls->getShortName();
    if (impl_->classes.count(qualified)) vel::diag::throwError("Korb:DuplicateClass", {qualified});
    cls->qualifiedName_ = qualified;
    cls->registerMembers();
    const std::string& super = cls->getSuperclassName();
    if (!super.empty() && !impl_->classes.count(super))
        vel::diag::throwError("Korb:UnknownSuperclass", {qualified, super});
    impl_->classOrder[impl_->registering].push_back(qualified);
    impl_->classes.emplace(qualified, std::move(cls));
}

void ObjectSystem::removeClasses(const std::string& packageName) {
    std::lock_guard lock(impl_->mutex);
    auto it = impl_->classOrder.find(packageName);
    if (it == impl_->classOrder.end()) return;
    for (const auto& name : it->second) impl_->classes.erase(name);
    it->second.clear();
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
