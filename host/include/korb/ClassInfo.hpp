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

    // What property() returns, to say more about the property just declared.
    class PropertyDeclaration {
    public:
        // The property holds objects of this qualified class (or of classes
        // derived from it): c.property("Systems", getter(...)).holds("VelCG.System").
        void holds(std::string elementClass) { owner_.setElementClass(name_, std::move(elementClass)); }

    private:
        friend class ClassInfo;
        PropertyDeclaration(ClassInfo& owner, std::string name) : owner_(owner), name_(std::move(name)) {}
        ClassInfo& owner_;
        std::string name_;
    };

    void superclass(std::string qualifiedName) { setSuperclass(std::move(qualifiedName)); }
    PropertyDeclaration property(std::string name, std::unique_ptr<GetterBinder> get,
                                 std::unique_ptr<SetterBinder> set = nullptr) {
        addProperty(name, std::move(get), std::move(set));
        return PropertyDeclaration(*this, std::move(name));
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
