#include "velcg/VelCGGenericFile.hpp"

#include "velcg/VelCGFileContentBuilder.hpp"

namespace VelCG {

VelCGGenericFile::VelCGGenericFile(const std::string& name)
    : VelCGFile(name, std::make_unique<VelCGSGenericFileContentBuilder>()) {}

VelCGGenericFile::~VelCGGenericFile() = default;

const char* VelCGGenericFile::getFullyQualifiedKorbTypeName() const { return "VelCG.VelCGGenericFile"; }

} // namespace VelCG
