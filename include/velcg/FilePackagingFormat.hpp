#pragma once

#include <cstdint>

namespace VelCG {

// How generated code is split into files. Values outside the list may be
// stored (they come from the host's settings) and count as modular.
enum class FilePackagingFormat : std::int32_t {
    Modular = 0,             // one source and header per module
    Compact = 1,             // everything in few files
    CompactWithDataFile = 2, // compact, with model data in a file of its own
};

} // namespace VelCG
