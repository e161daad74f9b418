#include "CG/Type.hpp"

#include <set>

#include "vel/diag/Diagnostic.hpp"

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

} // namespace CG
