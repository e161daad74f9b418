#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "velcg/Export.hpp"

namespace VelCG {

class FileRepScrivBridge;

// The section names in the order sections stand in a file ("Banner" ...
// "UserBottom").
VELCG_API const std::vector<std::string>& sectionNamesInFileOrder();

// Writes the whole file at fileIndex into `directory` under the file's name:
// every section in file order, each after the custom sections the template
// declared for it and did not place. The name must be a plain file name
// (see plainFileNameProblem), so that what a model names never lands
// outside the directory. The bytes go to a temporary file beside the target
// that replaces it only when they differ, so an unchanged file keeps its
// modification time and a failed write leaves the old file whole. Marks the
// file written. Returns whether the file on disk changed.
//
// Diagnostics: "VelCG:FileRepScrivBridge:NotAPlainFileName" (name, why),
// "VelCG:FileRepScrivBridge:FileWriteFailed" (path, the system's reason);
// those of the bridge's section writes pass through.
VELCG_API bool writeWholeFile(FileRepScrivBridge& bridge, std::int32_t fileIndex,
                              const std::filesystem::path& directory);

} // namespace VelCG
