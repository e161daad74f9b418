#pragma once

#include <string>

#include "velcg/FileSection.hpp"
#include "velcg/VelCGFile.hpp"

namespace VelCG {

// A module's header or source file. It has the sections Includes, Defines,
// Typedefs, ForwardDecls, ExternData, ExternFcns, FcnPrototypes,
// Declarations, Functions (a FunctionsSection) and Documentation; banner and
// user text reach it only through its custom contents.
class VELCG_API VelCGModuleFile : public VelCGFile {
public:
    explicit VelCGModuleFile(const std::string& name);
    ~VelCGModuleFile() override;

    // "VelCG.VelCGModuleFile".
    const char* getFullyQualifiedKorbTypeName() const override;

    using VelCGFile::getDeclarationsSection;
    using VelCGFile::getDefinesSection;
    using VelCGFile::getDocumentationSection;
    using VelCGFile::getExternDataSection;
    using VelCGFile::getExternFunctionsSection;
    using VelCGFile::getForwardDeclarationsSection;
    using VelCGFile::getFunctionPrototypesSection;
    using VelCGFile::getFunctionsSection;
    using VelCGFile::getIncludesSection;
    using VelCGFile::getTypedefsSection;
    using VelCGFile::korb_getDeclarationsSection;
    using VelCGFile::korb_getDefinesSection;
    using VelCGFile::korb_getDocumentationSection;
    using VelCGFile::korb_getExternDataSection;
    using VelCGFile::korb_getExternFunctionsSection;
    using VelCGFile::korb_getForwardDeclarationsSection;
    using VelCGFile::korb_getFunctionPrototypesSection;
    using VelCGFile::korb_getFunctionsSection;
    using VelCGFile::korb_getIncludesSection;
    using VelCGFile::korb_getTypedefsSection;
};

} // namespace VelCG
