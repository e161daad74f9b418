#pragma once

#include "korb/PackageInfo.hpp"

namespace VelCG::binding {

// The package "VelCG": every script-visible class of the library.
class VelCGPackage final : public korb::PackageInfo {
public:
    static constexpr const char* kName = "VelCG";

    const char* getName() const override { return kName; }
    void registerClasses(korb::ObjectSystem& system) override;
};

} // namespace VelCG::binding
