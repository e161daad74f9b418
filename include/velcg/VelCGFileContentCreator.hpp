#pragma once

#include <memory>

#include "velcg/Export.hpp"

namespace VelCG {

class VelCGFileContent;
class VelCGFileContentBuilder;

// Drives a content builder through its steps.
class VELCG_API VelCGFileContentCreator {
public:
    // buildContent, the 22 section steps from Banner to UserBottom, then
    // getFileContent. Null when the builder allocated no table.
    static std::unique_ptr<VelCGFileContent> createFileContent(VelCGFileContentBuilder& builder);
};

} // namespace VelCG
