#pragma once

#include <cstdint>

#include "velcg/Export.hpp"

// Entry points through which the host loads and unloads the library. They
// have C linkage so that the host finds them by their plain names.
extern "C" {

// The record returned by QueryPlexoFcnTable_velcg.
struct PlexoFcnTable {
    std::uint32_t structSize; // sizeof(PlexoFcnTable), for version checks
    std::uint32_t abiVersion; // 1
    const char* moduleName;   // "velcg"
    const char* packageName;  // "VelCG"
    void (*initialize)();     // PlexoInitialize_velcg
    void (*terminate)();      // PlexoTerminate_velcg
};

// Registers the package "VelCG" with the host object system. Once a call
// has succeeded, later calls in the process do nothing. A failure is not
// thrown (nothing crosses the C boundary): it is reported through
// reportDiagnostic (velcg/ModelDiagnostics.hpp), and the next call tries
// again.
VELCG_C_EXPORT void PlexoInitialize_velcg() noexcept;

// Runs the package's termination (its classes leave the object system).
// Once a call has succeeded, later calls do nothing; there is no
// re-initialisation after it. Failures are reported as by
// PlexoInitialize_velcg.
VELCG_C_EXPORT void PlexoTerminate_velcg() noexcept;

// The module's static function table.
VELCG_C_EXPORT const PlexoFcnTable* QueryPlexoFcnTable_velcg() noexcept;
}
