#include "velcg/VelCGModuleFile.hpp"

#include "velcg/VelCGFileContentBuilder.hpp"

namespace VelCG {

VelCGModuleFile::VelCGModuleFile(const std::string& name)
    : VelCGFile(name, std::make_unique<VelCGModuleFileContentBuilder>()) {}

VelCGModuleFile::~VelCGModuleFile() = default;

const char* VelCGModuleFile::getFullyQualifiedKorbTypeName() const { return "VelCG.VelCGModuleFile"; }

} // namespace VelCG
