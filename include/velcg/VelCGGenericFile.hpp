#pragma once

#include <string>

#include "velcg/FileSection.hpp"
#include "velcg/VelCGFile.hpp"

namespace VelCG {

// Any generated file other than a module or data-types file. It has all 22
// sections; its Functions section is a plain FileSection.
class VELCG_API VelCGGenericFile : public VelCGFile {
public:
    explicit VelCGGenericFile(const std::string& name);
    ~VelCGGenericFile() override;

    // "VelCG.VelCGGenericFile".
    const char* getFullyQualifiedKorbTypeName() const override;

    using VelCGFile::getCompilerErrorsSection;
    using VelCGFile::getCompilerWarningsSection;
    using VelCGFile::getDeclarationsSection;
    using VelCGFile::getDefinesSection;
    using VelCGFile::getDefinitionsSection;
    using VelCGFile::getDocumentationSection;
    using VelCGFile::getEnumsSection;
    using VelCGFile::getExternDataSection;
    using VelCGFile::getExternFunctionsSection;
    using VelCGFile::getForwardDeclarationsSection;
    using VelCGFile::getFunctionPrototypesSection;
    using VelCGFile::getFunctionsSection;
    using VelCGFile::getIncludesSection;
    using VelCGFile::getTypedefsSection;
    using VelCGFile::korb_getCompilerErrorsSection;
    using VelCGFile::korb_getCompilerWarningsSection;
    using VelCGFile::korb_getDeclarationsSection;
    using VelCGFile::korb_getDefinesSection;
    using VelCGFile::korb_getDefinitionsSection;
    using VelCGFile::korb_getDocumentationSection;
    using VelCGFile::korb_getEnumsSection;
    using VelCGFile::korb_getExternDataSection;
    using VelCGFile::korb_getExternFunctionsSection;
    using VelCGFile::korb_getForwardDeclarationsSection;
    using VelCGFile::korb_getFunctionPrototypesSection;
    using VelCGFile::korb_getFunctionsSection;
    using VelCGFile::korb_getIncludesSection;
    using VelCGFile::korb_getTypedefsSection;
};

} // namespace VelCG
