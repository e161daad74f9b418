#pragma once

#include <functional>
#include <memory>
#include <string>

#include "korb/Binders.hpp"
#include "vel/HostExport.hpp"
#include "vel/mi/HandleClass.hpp"

namespace korb {

// The superclass that lets objects of different classes share one host array.
inline constexpr const char* kHeterogeneous = "plexo.mixin.Heterogeneous";

// A class record whose members are declared by a function, so that a package
// can describe a class in one place:
//
//   ClassInfo::make("System", "VelCG System object", [](ClassInfo& c) {
//       c.superclass(kHeterogeneous);
//       c.property("Identifier", getter(&System::getIdentifier), setter(&System::setIdentifier));
//       c.method("isInlined", method(&System::isInlined));
//   });
class VELHOST_API ClassInfo final : public vel::mi::HandleClass {
public:
    using Declare = std::function<void(ClassInfo&)>;

    ClassInfo(std::string shortName, std::string description, Declare declare, bool isAbstract = false);
    static std::unique_ptr<ClassInfo> make(std::string shortName, std::string description, Declare declare,
                                           bool isAbstract = false);

    bool isAbstract() const override { return abstract_; }

    void superclass(std::string qualifiedName) { setSuperclass(std::move(qualifiedName)); }
    void property(std::string name, std::unique_ptr<GetterBinder> get,
                  std::unique_ptr<SetterBinder> set = nullptr) {
        addProperty(std::move(name), std::move(get), std::move(set));
    }
    void method(std::string name, std::unique_ptr<MethodBinder> binder) {
        addMethod(std::move(name), std::move(binder));
    }

protected:
    void registerMembers() override;

private:
    Declare declare_;
    bool abstract_;
};

} // namespace korb
