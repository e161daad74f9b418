#pragma once

// Helpers for tests that register classes of their own with an object system.

#include <functional>
#include <string>
#include <utility>

#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/mi/Handle.hpp"

namespace testing_support {

// A package whose classes are declared by a function, so that each test
// states the classes it registers.
class FunctionPackage : public korb::PackageInfo {
public:
    FunctionPackage(const char* name, std::function<void(korb::ObjectSystem&)> classes)
        : name_(name), classes_(std::move(classes)) {}
    const char* getName() const override { return name_; }
    void registerClasses(korb::ObjectSystem& system) override { classes_(system); }

private:
    const char* name_;
    std::function<void(korb::ObjectSystem&)> classes_;
};

// An object of any class, named at run time (so that its type name is not a
// literal and two objects of one class name it at different addresses).
class NamedObject : public vel::mi::Handle {
public:
    explicit NamedObject(std::string type) : type_(std::move(type)) {}
    const char* getFullyQualifiedKorbTypeName() const override { return type_.c_str(); }

private:
    std::string type_;
};

} // namespace testing_support
