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

    FileSection& getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
    const FileSection& getIncludesSection() const { return getFileSection(INCLUDES_SECTION); }
    FileSection* korb_getIncludesSection() { return &getFileSection(INCLUDES_SECTION); }
    FileSection& getDefinesSection() { return getFileSection(DEFINES_SECTION); }
    const FileSection& getDefinesSection() const { return getFileSection(DEFINES_SECTION); }
    FileSection* korb_getDefinesSection() { return &getFileSection(DEFINES_SECTION); }
    FileSection& getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
    const FileSection& getTypedefsSection() const { return getFileSection(TYPEDEFS_SECTION); }
    FileSection* korb_getTypedefsSection() { return &getFileSection(TYPEDEFS_SECTION); }
    FileSection& getForwardDeclarationsSection() { return getFileSection(FORWARD_DECLS_SECTION); }
    const FileSection& getForwardDeclarationsSection() const { return getFileSection(FORWARD_DECLS_SECTION); }
    FileSection* korb_getForwardDeclarationsSection() { return &getFileSection(FORWARD_DECLS_SECTION); }
    FileSection& getExternDataSection() { return getFileSection(EXTERN_DATA_SECTION); }
    const FileSection& getExternDataSection() const { return getFileSection(EXTERN_DATA_SECTION); }
    FileSection* korb_getExternDataSection() { return &getFileSection(EXTERN_DATA_SECTION); }
    FileSection& getExternFunctionsSection() { return getFileSection(EXTERN_FCNS_SECTION); }
    const FileSection& getExternFunctionsSection() const { return getFileSection(EXTERN_FCNS_SECTION); }
    FileSection* korb_getExternFunctionsSection() { return &getFileSection(EXTERN_FCNS_SECTION); }
    FileSection& getFunctionPrototypesSection() { return getFileSection(FCN_PROTOTYPES_SECTION); }
    const FileSection& getFunctionPrototypesSection() const { return getFileSection(FCN_PROTOTYPES_SECTION); }
    FileSection* korb_getFunctionPrototypesSection() { return &getFileSection(FCN_PROTOTYPES_SECTION); }
    FileSection& getDeclarationsSection() { return getFileSection(DECLARATIONS_SECTION); }
    const FileSection& getDeclarationsSection() const { return getFileSection(DECLARATIONS_SECTION); }
    FileSection* korb_getDeclarationsSection() { return &getFileSection(DECLARATIONS_SECTION); }
    FileSection& getFunctionsSection() { return getFileSection(FUNCTIONS_SECTION); }
    const FileSection& getFunctionsSection() const { return getFileSection(FUNCTIONS_SECTION); }
    FileSection* korb_getFunctionsSection() { return &getFileSection(FUNCTIONS_SECTION); }
    FileSection& getDocumentationSection() { return getFileSection(DOCUMENTATION_SECTION); }
    const FileSection& getDocumentationSection() const { return getFileSection(DOCUMENTATION_SECTION); }
    FileSection* korb_getDocumentationSection() { return &getFileSection(DOCUMENTATION_SECTION); }
};

} // namespace VelCG
