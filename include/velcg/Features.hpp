#pragma once

#include "vel/feature/Feature.hpp"
#include "velcg/Export.hpp"

// Feature switches of the library, declared when the library is loaded.

// How the model is written to the code descriptor: 0 or less writes nothing;
// 1 writes on a background thread; 2 writes synchronously; 3 also records
// the actual sources of async-queue blocks; 4 or more also writes systems
// and root inputs. Also the detail level of ports and parameters.
extern VELCG_API vel::feature::Feature VELFEAT_VelCGDirectEmitSerialize;

// Coder data groups for the code generator that uses this library (on by
// default) and its prototyping hook (off by default). The library itself
// does not read them.
extern VELCG_API vel::feature::Feature VELFEAT_CoderDataGroups;
extern VELCG_API vel::feature::Feature VELFEAT_CoderDataGroupTesting;
