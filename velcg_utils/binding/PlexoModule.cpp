#include "velcg/PlexoModule.hpp"

#include "EntryPoint.hpp"
#include "VelCGPackage.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"

namespace {
// Plain flags: the host calls the entry points one at a time. Each is set
// only once its entry point has succeeded.
bool initialized = false;
bool terminated = false;

const PlexoFcnTable fcnTable = {
    sizeof(PlexoFcnTable), 1, "velcg", VelCG::binding::VelCGPackage::kName, &PlexoInitialize_velcg,
    &PlexoTerminate_velcg,
};
} // namespace

extern "C" {

void PlexoInitialize_velcg() noexcept {
    VelCG::binding::runEntryPointOnce(initialized, "PlexoInitialize_velcg", [] {
        korb::ObjectSystem::instance().addPackage(std::make_unique<VelCG::binding::VelCGPackage>());
    });
}

void PlexoTerminate_velcg() noexcept {
    VelCG::binding::runEntryPointOnce(terminated, "PlexoTerminate_velcg", [] {
        auto& system = korb::ObjectSystem::instance();
        if (korb::PackageInfo* package = system.findPackage(VelCG::binding::VelCGPackage::kName))
            package->terminate(system.getPublicClient());
    });
}

const PlexoFcnTable* QueryPlexoFcnTable_velcg() noexcept { return &fcnTable; }
}
