#pragma once

// The background serialization passes of CGModel, as the rest of the
// library sees them.

#include <atomic>

namespace VelCG::detail {

// How many background passes of any model run now. The access guard of the
// model classes in the object system watches it directly, so that a script
// pays one atomic load per access while no pass runs.
const std::atomic<int>& runningBackgroundPassCount();

} // namespace VelCG::detail
