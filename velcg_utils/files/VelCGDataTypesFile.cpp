#include "velcg/VelCGDataTypesFile.hpp"

#include "velcg/VelCGFileContentBuilder.hpp"

namespace VelCG {

VelCGDataTypesFile::VelCGDataTypesFile(const std::string& name)
    : VelCGFile(name, std::make_unique<VelCGSDataTypesFileContentBuilder>()) {}

VelCGDataTypesFile::~VelCGDataTypesFile() = default;

const char* VelCGDataTypesFile::getFullyQualifiedKorbTypeName() const { return "VelCG.VelCGDataTypesFile"; }

} // namespace VelCG
