#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace VelCG {
class CGModel;
class VelCGFileRepository;
} // namespace VelCG

namespace example {

// The code templates of the example generator. Like template scripts, they
// read the model only through the object system (objects as property bags)
// and fill the files only through the repository's script bridge (files by
// index, attributes and sections by name).
//
// Expects the repository to hold, in this order, the model's header, its
// source, its data-types header and the generic main file.
void runTemplates(VelCG::CGModel& model, VelCG::VelCGFileRepository& repository);

struct WrittenFile {
    std::string path;
    long bytes;
};

// Writes every file of the repository into directory (which must exist),
// section by section in kind order, and marks each as written to disk.
std::vector<WrittenFile> writeFiles(VelCG::VelCGFileRepository& repository, const std::string& directory);

} // namespace example
