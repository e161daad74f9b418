#include "VelCGPackage.hpp"

#include "ClassBindings.hpp"
#include "korb/ObjectSystem.hpp"

namespace VelCG::binding {

void VelCGPackage::registerClasses(korb::ObjectSystem& system) {
    ClassList classes;
    appendFileClasses(classes);
    appendModelClasses(classes);
    for (auto& cls : classes) system.registerClass(std::move(cls));
}

} // namespace VelCG::binding
