#pragma once

#include <cstdint>

#include "vel/HostExport.hpp"

namespace vel::sys {

// The bytes of this process's memory that are resident now (Linux: the
// resident pages of /proc/self/statm; Windows: the working set). Zero where
// the system does not tell.
VELHOST_API std::uint64_t residentBytes();

} // namespace vel::sys
