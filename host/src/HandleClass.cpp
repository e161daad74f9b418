#include "vel/mi/HandleClass.hpp"

#include <utility>

#include "korb/Binders.hpp"
#include "korb/Messages.hpp"
#include "vel/diag/Diagnostic.hpp"

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
        diag::throwError(korb::messages::DuplicateMember, {name, shortName_});
    properties_.push_back({std::move(name), std::move(getter), std::move(setter), {}});
}

void HandleClass::addMethod(std::string name, std::unique_ptr<korb::MethodBinder> binder) {
    if (findOwnProperty(name) || findOwnMethod(name))
        diag::throwError(korb::messages::DuplicateMember, {name, shortName_});
    methods_.push_back({std::move(name), std::move(binder)});
}

void HandleClass::setElementClass(const std::string& propertyName, std::string elementClass) {
    for (auto& p : properties_)
        if (p.name == propertyName) {
            p.elementClass = std::move(elementClass);
            return;
        }
    diag::throwError(korb::messages::UnknownProperty, {propertyName, shortName_});
}

} // namespace vel::mi
