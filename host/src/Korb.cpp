// The object system: class records, binders, the registry and its client.
#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <unordered_map>

#include "korb/Binders.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/HostTraits.hpp"
#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"

namespace vel::mi {

HandleClass::HandleClass(std::string shortName, std::string description)
    : shortName_(std::move(shortName)), description_(std::move(description)) {}

HandleClass::~HandleClass() = default;

bool HandleClass::isAbstract() const { return false; }

const HandleClass::Property* HandleClass::findOwnProperty(const std::string& name) const {
    for (const auto& p : properties_)
        if (p.name == name) return &p;
    return nullptr;
}

const HandleClass::Method* HandleClass::findOwnMethod(const std::string& name) const {
    for (const auto& m : methods_)
        if (m.name == name) return &m;
    return nullptr;
}

void HandleClass::setSuperclass(std::string qualifiedName) { superclass_ = std::move(qualifiedName); }

void HandleClass::addProperty(std::string name, std::unique_ptr<korb::GetterBinder> getter,
                              std::unique_ptr<korb::SetterBinder> setter) {
    if (findOwnProperty(name) || findOwnMethod(name))
        diag::throwError("Korb:DuplicateMember", {name, shortName_});
    properties_.push_back({std::move(name), std::move(getter), std::move(setter)});
}

void HandleClass::addMethod(std::string name, std::unique_ptr<korb::MethodBinder> binder) {
    if (findOwnProperty(name) || findOwnMethod(name))
        diag::throwError("Korb:DuplicateMember", {name, shortName_});
    methods_.push_back({std::move(name), std::move(binder)});
}

} // namespace vel::mi

namespace korb {

// ---------------------------------------------------------------- binders

GetterBinder::~GetterBinder() = default;
SetterBinder::~SetterBinder() = default;
MethodBinder::~MethodBinder() = default;

tuvArrayPtr MethodBinder::call(vel::mi::Handle& object, const std::vector<tuvArrayPtr>& args) const {
    if (args.size() != arity_) detail::wrongArgumentCount(arity_, args.size());
    for (const auto& a : args)
        if (!a) vel::diag::throwError("Korb:TypeMismatch", {"any", "a null array"});
    return invoke(object, args);
}

namespace detail {

void wrongClass(const vel::mi::Handle& object, const char* nativeType) {
    vel::diag::throwError("Korb:WrongClass", {object.getFullyQualifiedKorbTypeName(), nativeType});
}

void wrongArgumentCount(std::size_t expected, std::size_t given) {
    vel::diag::throwError("Korb:WrongNumberOfArguments", {std::to_string(expected), std::to_string(given)});
}

void typeMismatch(const char* expected, const tuvArray& given) {
    vel::diag::throwError("Korb:TypeMismatch", {expected, given.describe()});
}

void notAHandle(const char* nativeType) { vel::diag::throwError("Korb:NotAHandle", {nativeType}); }

bool toBool(const tuvArray& a) {
    if (!a.isScalar()) typeMismatch(kLogicalScalar, a);
    if (a.classId() == tuvClass::Logical) return a.logicalValue();
    if (a.isNumeric()) {
        double v = a.numericValue();
        if (v == 0.0 || v == 1.0) return v != 0.0;
    }
    typeMismatch(kLogicalScalar, a);
}

std::int64_t toInteger(const tuvArray& a, std::int64_t lo, std::int64_t hi, const char* type) {
    if (!a.isScalar() || !a.isNumeric()) typeMismatch(type, a);
    if (a.classId() == tuvClass::Int64) {
        std::int64_t v = a.int64Value();
        if (v < lo || v > hi) typeMismatch(type, a);
        return v;
    }
    double v = a.numericValue();
    // Doubles beyond 2^63 cannot be range-checked exactly against int64;
    // compare in long double where the bounds are exact.
    if (std::trunc(v) != v || static_cast<long double>(v) < static_cast<long double>(lo) ||
        static_cast<long double>(v) > static_cast<long double>(hi))
        typeMismatch(type, a);
    return static_cast<std::int64_t>(v);
}

double toDouble(const tuvArray& a) {
    if (!a.isScalar() || !a.isNumeric()) typeMismatch(kDoubleScalar, a);
    if (a.classId() == tuvClass::Int64) return static_cast<double>(a.int64Value());
    return a.numericValue();
}

namespace {
bool isText(const tuvArray& a) { return a.classId() == tuvClass::Char && a.rows() <= 1; }
bool isEmptyValue(const tuvArray& a) { return a.isEmpty() && a.classId() == tuvClass::Double; }
} // namespace

std::string toNarrow(const tuvArray& a) {
    if (isEmptyValue(a)) return {};
    if (!isText(a)) typeMismatch(kChar, a);
    return a.toUtf8();
}

std::wstring toWideString(const tuvArray& a) {
    if (isEmptyValue(a)) return {};
    if (!isText(a)) typeMismatch(kChar, a);
    return a.toWide();
}

std::vector<std::int32_t> toInt32Vector(const tuvArray& a) {
    if (a.isEmpty() && (a.isNumeric() || a.classId() == tuvClass::Cell)) return {};
    if (!a.isNumeric() || (a.rows() != 1 && a.cols() != 1)) typeMismatch(kInt32Vector, a);
    if (a.classId() == tuvClass::Int32) return a.int32Data();
    std::vector<std::int32_t> out;
    out.reserve(a.numel());
    for (std::size_t i = 0; i < a.numel(); ++i) {
        double v = a.numericAt(i);
        if (std::trunc(v) != v || v < INT32_MIN || v > INT32_MAX) typeMismatch(kInt32Vector, a);
        out.push_back(static_cast<std::int32_t>(v));
    }
    return out;
}

template <class S, class F>
static std::vector<S> toList(const tuvArray& a, F convert) {
    std::vector<S> out;
    if (isEmptyValue(a)) return out;
    if (a.classId() != tuvClass::Cell) typeMismatch(kCell, a);
    out.reserve(a.numel());
    for (std::size_t i = 0; i < a.numel(); ++i) {
        const tuvArray& c = *a.getCell(i);
        if (!isText(c) && !isEmptyValue(c)) typeMismatch("cell array of char", a);
        out.push_back(convert(c));
    }
    return out;
}

std::vector<std::string> toNarrowList(const tuvArray& a) { return toList<std::string>(a, toNarrow); }
std::vector<std::wstring> toWideList(const tuvArray& a) { return toList<std::wstring>(a, toWideString); }

tuvArrayPtr fromNarrowList(const std::vector<std::string>& v) {
    auto cell = tuvArray::cell(v.size(), 1);
    for (std::size_t i = 0; i < v.size(); ++i) cell->setCell(i, tuvArray::fromUtf8(v[i]));
    return cell;
}

tuvArrayPtr fromWideList(const std::vector<std::wstring>& v) {
    auto cell = tuvArray::cell(v.size(), 1);
    for (std::size_t i = 0; i < v.size(); ++i) cell->setCell(i, tuvArray::fromWide(v[i]));
    return cell;
}

std::vector<vel::mi::Handle*> toHandles(const tuvArray& a) {
    if (isEmptyValue(a)) return {};
    if (a.classId() != tuvClass::Object) typeMismatch(kAny, a);
    std::vector<vel::mi::Handle*> out;
    out.reserve(a.numel());
    for (const auto& ref : a.handles()) {
        vel::mi::Handle* h = ref.get();
        if (!h) vel::diag::throwError("Korb:InvalidHandle", {});
        out.push_back(h);
    }
    return out;
}

} // namespace detail

// ------------------------------------------------------------ class info

ClassInfo::ClassInfo(std::string shortName, std::string description, Declare declare, bool isAbstract)
    : HandleClass(std::move(shortName), std::move(description)),
      declare_(std::move(declare)),
      abstract_(isAbstract) {}

std::unique_ptr<ClassInfo> ClassInfo::make(std::string shortName, std::string description, Declare declare,
                                           bool isAbstract) {
    return std::make_unique<ClassInfo>(std::move(shortName), std::move(description), std::move(declare),
                                       isAbstract);
}

void ClassInfo::registerMembers() {
    if (declare_) declare_(*this);
}

PackageInfo::~PackageInfo() = default;

void PackageInfo::terminate(Client& client) { client.getObjectSystem().removeClasses(getName()); }

// ---------------------------------------------------------- object system

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

// ----------------------------------------------------------------- client

namespace {
vel::mi::Handle& live(const vel::mi::HandleRef& ref) {
    vel::mi::Handle* h = ref.get();
    if (!h) vel::diag::throwError("Korb:InvalidHandle", {});
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
} // namespace

const vel::mi::HandleClass* Client::findClass(const std::string& qualifiedName) const {
    return system_.findClass(qualifiedName);
}

const vel::mi::HandleClass& Client::classOf(const vel::mi::Handle& object) const {
    const char* name = object.getFullyQualifiedKorbTypeName();
    const auto* cls = system_.findClass(name ? name : "");
    if (!cls) vel::diag::throwError("Korb:UnknownClass", {name ? name : ""});
    return *cls;
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
    for (const auto* c : chainOf(system_, classOf(object)))
        if (c->findOwnProperty(name)) return true;
    return false;
}

const vel::mi::HandleClass::Property& Client::findProperty(const vel::mi::Handle& object,
                                                           const std::string& name) const {
    const auto& cls = classOf(object);
    for (const auto* c : chainOf(system_, cls))
        if (const auto* p = c->findOwnProperty(name)) return *p;
    vel::diag::throwError("Korb:UnknownProperty", {name, cls.getQualifiedName()});
}

const vel::mi::HandleClass::Method& Client::findMethod(const vel::mi::Handle& object,
                                                       const std::string& name) const {
    const auto& cls = classOf(object);
    for (const auto* c : chainOf(system_, cls))
        if (const auto* m = c->findOwnMethod(name)) return *m;
    vel::diag::throwError("Korb:UnknownMethod", {name, cls.getQualifiedName()});
}

bool Client::isReadOnly(const vel::mi::Handle& object, const std::string& name) const {
    return findProperty(object, name).isReadOnly();
}

const std::string& Client::getPropertyType(const vel::mi::Handle& object, const std::string& name) const {
    return findProperty(object, name).getter->hostTypeName();
}

tuvArrayPtr Client::getProperty(const vel::mi::HandleRef& ref, const std::string& name) const {
    vel::mi::Handle& object = live(ref);
    return findProperty(object, name).getter->getArray(object);
}

Value Client::getPropertyValue(const vel::mi::HandleRef& ref, const std::string& name) const {
    vel::mi::Handle& object = live(ref);
    return findProperty(object, name).getter->getValue(object);
}

void Client::setProperty(const vel::mi::HandleRef& ref, const std::string& name,
                         const tuvArray& value) const {
    vel::mi::Handle& object = live(ref);
    const auto& prop = findProperty(object, name);
    const std::string& cls = classOf(object).getQualifiedName();
    if (prop.isReadOnly()) vel::diag::throwError("Korb:ReadOnlyProperty", {name, cls});
    if (object.isLocked()) vel::diag::throwError("Korb:ObjectLocked", {name, cls});
    object.preSetPropFcn(name.c_str());
    try {
        prop.setter->set(object, value);
    } catch (const vel::diag::Exception& e) {
        if (e.identifier() != "Korb:TypeMismatch" && e.identifier() != "Korb:InvalidHandle") throw;
        vel::diag::throwError("Korb:InvalidPropertyValue", {name, cls, e.diagnostic().message()});
    }
    object.postSetPropFcn(name.c_str());
}

tuvArrayPtr Client::callMethod(const vel::mi::HandleRef& ref, const std::string& name,
                               const std::vector<tuvArrayPtr>& args) const {
    vel::mi::Handle& object = live(ref);
    return findMethod(object, name).binder->call(object, args);
}

vel::mi::HandleRef Client::refFromArray(const tuvArray& object) {
    if (object.classId() != tuvClass::Object || !object.isScalar())
        vel::diag::throwError("Korb:InvalidHandle", {});
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
