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
    FileSection& getEnumsSection() { return getFileSection(ENUMERATIONS_SECTION); }
    const FileSection& getEnumsSection() const { return getFileSection(ENUMERATIONS_SECTION); }
    FileSection* korb_getEnumsSection() { return &getFileSection(ENUMERATIONS_SECTION); }
    FileSection& getDefinitionsSection() { return getFileSection(DEFINITIONS_SECTION); }
    const FileSection& getDefinitionsSection() const { return getFileSection(DEFINITIONS_SECTION); }
    FileSection* korb_getDefinitionsSection() { return &getFileSection(DEFINITIONS_SECTION); }
    FileSection& getCompilerErrorsSection() { return getFileSection(COMPILER_ERRORS_SECTION); }
    const FileSection& getCompilerErrorsSection() const { return getFileSection(COMPILER_ERRORS_SECTION); }
    FileSection* korb_getCompilerErrorsSection() { return &getFileSection(COMPILER_ERRORS_SECTION); }
    FileSection& getCompilerWarningsSection() { return getFileSection(COMPILER_WARNINGS_SECTION); }
    const FileSection& getCompilerWarningsSection() const {
        return getFileSection(COMPILER_WARNINGS_SECTION);
    }
    FileSection* korb_getCompilerWarningsSection() { return &getFileSection(COMPILER_WARNINGS_SECTION); }
};

} // namespace VelCG
