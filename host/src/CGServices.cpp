// The code generator's IR types, embedded type objects and data interfaces.
#include <atomic>
#include <set>

#include "CG/DataInterface.hpp"
#include "CG/EmbeddedType.hpp"
#include "CG/Type.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/tuvArray.hpp"

namespace CG {

struct Type::Private {};

Type::Type(const Private&, Kind kind, std::string name) : kind_(kind), name_(std::move(name)) {}

namespace {
[[noreturn]] void invalidType(const std::string& why) { vel::diag::throwErrorText("CG:InvalidType", why); }
} // namespace

Type::Ptr Type::voidType() { return std::make_shared<Type>(Private{}, Kind::Void, "void"); }

Type::Ptr Type::boolean(std::string name) {
    auto t = std::make_shared<Type>(Private{}, Kind::Boolean, std::move(name));
    t->bits_ = 8;
    return t;
}

Type::Ptr Type::integer(std::string name, int bits, bool isSigned) {
    if (bits <= 0) invalidType("An integer type needs a positive number of bits.");
    auto t = std::make_shared<Type>(Private{}, Kind::Integer, std::move(name));
    t->bits_ = bits;
    t->signed_ = isSigned;
    return t;
}

Type::Ptr Type::floating(std::string name, int bits) {
    if (bits != 32 && bits != 64) invalidType("A floating-point type has 32 or 64 bits.");
    auto t = std::make_shared<Type>(Private{}, Kind::Float, std::move(name));
    t->bits_ = bits;
    t->signed_ = true;
    return t;
}

Type::Ptr Type::structure(std::string name, std::vector<Field> fields) {
    std::set<std::string> seen;
    for (const auto& f : fields) {
        if (!f.type) invalidType("Field '" + f.name + "' of structure '" + name + "' has no type.");
        if (!seen.insert(f.name).second)
            invalidType("Structure '" + name + "' has two fields named '" + f.name + "'.");
    }
    auto t = std::make_shared<Type>(Private{}, Kind::Struct, std::move(name));
    t->fields_ = std::move(fields);
    return t;
}

Type::Ptr Type::matrix(Ptr element, std::vector<std::int32_t> dimensions) {
    if (!element) invalidType("A matrix type needs an element type.");
    for (auto d : dimensions)
        if (d < 0) invalidType("Matrix dimensions cannot be negative.");
    auto t = std::make_shared<Type>(Private{}, Kind::Matrix, std::string());
    t->base_ = std::move(element);
    t->dimensions_ = std::move(dimensions);
    return t;
}

Type::Ptr Type::complex(Ptr element) {
    if (!element) invalidType("A complex type needs an element type.");
    auto t = std::make_shared<Type>(Private{}, Kind::Complex, std::string());
    t->base_ = std::move(element);
    return t;
}

Type::Ptr Type::pointer(Ptr target) {
    if (!target) invalidType("A pointer type needs a target type.");
    auto t = std::make_shared<Type>(Private{}, Kind::Pointer, std::string());
    t->base_ = std::move(target);
    return t;
}

std::string Type::toString() const {
    switch (kind_) {
        case Kind::Struct: {
            std::string s = "struct " + name_ + " {";
            for (const auto& f : fields_) s += " " + f.type->toString() + " " + f.name + ";";
            return s + " }";
        }
        case Kind::Matrix: {
            std::string s = base_->toString();
            for (auto d : dimensions_) s += "[" + std::to_string(d) + "]";
            return s;
        }
        case Kind::Complex:
            return "complex<" + base_->toString() + ">";
        case Kind::Pointer:
            return base_->toString() + "*";
        default:
            return name_;
    }
}

// ------------------------------------------------------------------ counted objects

namespace {
std::atomic<long> liveEmbeddedTypes{0};
std::atomic<long> liveDataInterfaces{0};

// Host values hold one reference for as long as the array lives.
template <class T>
std::shared_ptr<const void> holdReference(const T* object) {
    object->addRef();
    return std::shared_ptr<const void>(object, [](const void* p) { static_cast<const T*>(p)->release(); });
}
} // namespace

EmbeddedType::EmbeddedType(Type::Ptr irType) : irType_(std::move(irType)) { ++liveEmbeddedTypes; }
EmbeddedType::~EmbeddedType() { --liveEmbeddedTypes; }

EmbeddedType* EmbeddedType::createFromIRType(const Type& irType) {
    // The IR type is copied so that the embedded type does not depend on the
    // lifetime of the caller's object.
    return new EmbeddedType(std::make_shared<Type>(irType));
}

void EmbeddedType::addRef() const { refs_.fetch_add(1, std::memory_order_relaxed); }

void EmbeddedType::release() const {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

std::string EmbeddedType::getName() const { return irType_->toString(); }

std::shared_ptr<tuvArray> EmbeddedType::toTuvArray(const EmbeddedType* type) {
    if (!type) return tuvArray::empty();
    return tuvArray::opaque("embedded.type", holdReference(type));
}

long EmbeddedType::liveCount() { return liveEmbeddedTypes.load(); }

DataInterface::DataInterface(Description description) : description_(std::move(description)) {
    ++liveDataInterfaces;
}
DataInterface::~DataInterface() { --liveDataInterfaces; }

DataInterface* DataInterface::create(Description description) {
    return new DataInterface(std::move(description));
}

void DataInterface::addRef() const { refs_.fetch_add(1, std::memory_order_relaxed); }

void DataInterface::release() const {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

std::shared_ptr<tuvArray> DataInterface::toTuvArray(const DataInterface* dataInterface) {
    if (!dataInterface) return tuvArray::empty();
    return tuvArray::opaque("coder.DataInterface", holdReference(dataInterface));
}

long DataInterface::liveCount() { return liveDataInterfaces.load(); }

} // namespace CG
