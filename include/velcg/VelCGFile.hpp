#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <boost/unordered_set.hpp>

#include "vel/mi/Handle.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/Export.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG {

class FileSection;
class VelCGFileContent;
class VelCGFileContentBuilder;

// One generated source file: its names, the attributes scripts read and set,
// the systems whose code it holds, its custom template contents and its
// section table. Which sections exist is fixed at construction by the
// builder of the file's kind (VelCGModuleFile, VelCGGenericFile,
// VelCGDataTypesFile). Files are owned by VelCGFileRepository.
//
// String attributes are stored exactly as given.
class VELCG_API VelCGFile : public vel::mi::Handle {
public:
    VelCGFile(const VelCGFile&) = delete;
    VelCGFile& operator=(const VelCGFile&) = delete;
    ~VelCGFile() override;

    // "VelCG.VelCGFile".
    const char* getFullyQualifiedKorbTypeName() const override;

    const std::wstring& getName() const { return name_; }
    const std::string& getNameAscii() const { return nameAscii_; }

    // The final component of the name without its last extension.
    const std::string& getBaseName() const { return baseName_; }
    void setBaseName(const std::string& baseName) { baseName_ = baseName; }

    // The whole name (directories kept) up to its last ".".
    const std::string& getNameWithoutExtension() const { return nameWithoutExtension_; }

    const std::string& getType() const { return type_; }
    void setType(const std::string& type) { type_ = type; }
    const std::string& getCreator() const { return creator_; }
    void setCreator(const std::string& creator) { creator_ = creator; }

    // Names of the systems whose code the file holds, in order of addition.
    const std::vector<std::string>& getSystemsInFile() const { return systemsInFile_; }
    // Replaces the list as given (duplicates kept).
    void setSystemsInFile(const std::vector<std::string>& systems);
    // Appends the name unless it is already listed.
    void addSystemToFile(const std::string& system);

    bool getFiltered() const { return filtered_; }
    void setFiltered(bool filtered) { filtered_ = filtered; }
    bool isWrittenToDisk() const { return writtenToDisk_; }
    // Marking a file written, after its sections were written
    // (writeSectionToFile), reports what did not reach it: a file written
    // without any text though not marked non-empty warns
    // "VelCG:VelCGFile:WrittenEmpty" (file name), and custom content lost to
    // it warns as CustomContents::warnUnwrittenContent says. Once per file;
    // a file never marked reports when it is destroyed.
    void setIsWrittenToDisk(bool written);
    bool getIndent() const { return indent_; }
    void setIndent(bool indent) { indent_ = indent; }
    bool isShared() const { return shared_; }
    void setIsShared(bool shared) { shared_ = shared; }
    bool getSharedType() const { return sharedType_; }
    void setSharedType(bool sharedType) { sharedType_ = sharedType; }
    bool getDeferredIncludeCoderTypes() const { return deferredIncludeCoderTypes_; }
    void setDeferredIncludeCoderTypes(bool deferred) { deferredIncludeCoderTypes_ = deferred; }

    const std::string& getCodeTemplate() const { return codeTemplate_; }
    void setCodeTemplate(const std::string& codeTemplate) { codeTemplate_ = codeTemplate; }
    const std::string& getOutputDirectory() const { return outputDirectory_; }
    void setOutputDirectory(const std::string& dir) { outputDirectory_ = dir; }
    const std::string& getGroup() const { return group_; }
    void setGroup(const std::string& group) { group_ = group; }
    const std::string& getDefinedMacro() const { return definedMacro_; }
    void setDefinedMacro(const std::string& macro) { definedMacro_ = macro; }

    // False once setIsNotEmpty was called; otherwise whether every section
    // of the file is empty.
    bool isEmpty() const;
    void setIsNotEmpty() { notEmpty_ = true; }
    // Clears the not-empty mark and every section.
    void clearContents();

    CustomContents& getCustomContent() { return customContents_; }
    const CustomContents& getCustomContent() const { return customContents_; }

    // Whether the file's kind has a section of this kind.
    bool hasSection(VelCGFileSectionKind kind) const;
    // The section of this kind, or an empty section that stands in for it
    // when the file has none: it drops what is added to it, warning with
    // the file's and the section's name (see VelCGFileContent).
    FileSection& getFileSection(VelCGFileSectionKind kind);
    const FileSection& getFileSection(VelCGFileSectionKind kind) const;
    FileSection* korb_getFileSection(VelCGFileSectionKind kind) { return &getFileSection(kind); }

    // Writes one section to an open stream: first appends the custom
    // sections the template declared for it but never placed, then the
    // section's bytes. Does nothing when the file has no such section.
    // REQUIRES: stream is not null ("VelCG:VelCGFile:NullStream").
    // A file of which a section was written reports, once marked written
    // (setIsWrittenToDisk) or else when destroyed, what never reached it.
    void writeSectionToFile(VelCGFileSectionKind kind, std::FILE* stream);

protected:
    // Named accessors of the built-in sections. Each file kind makes public
    // those of the sections it has (the others would only ever answer the
    // empty section); the korb_ forms are what scripts call.
#define VELCG_NAMED_SECTION(Name, Kind)                                            \
    FileSection& get##Name##Section() { return getFileSection(Kind); }             \
    const FileSection& get##Name##Section() const { return getFileSection(Kind); } \
    FileSection* korb_get##Name##Section() { return &getFileSection(Kind); }
    VELCG_NAMED_SECTION(Includes, INCLUDES_SECTION)
    VELCG_NAMED_SECTION(Defines, DEFINES_SECTION)
    VELCG_NAMED_SECTION(Typedefs, TYPEDEFS_SECTION)
    VELCG_NAMED_SECTION(ForwardDeclarations, FORWARD_DECLS_SECTION)
    VELCG_NAMED_SECTION(Enums, ENUMERATIONS_SECTION)
    VELCG_NAMED_SECTION(Definitions, DEFINITIONS_SECTION)
    VELCG_NAMED_SECTION(ExternData, EXTERN_DATA_SECTION)
    VELCG_NAMED_SECTION(ExternFunctions, EXTERN_FCNS_SECTION)
    VELCG_NAMED_SECTION(FunctionPrototypes, FCN_PROTOTYPES_SECTION)
    VELCG_NAMED_SECTION(Declarations, DECLARATIONS_SECTION)
    VELCG_NAMED_SECTION(Functions, FUNCTIONS_SECTION)
    VELCG_NAMED_SECTION(CompilerErrors, COMPILER_ERRORS_SECTION)
    VELCG_NAMED_SECTION(CompilerWarnings, COMPILER_WARNINGS_SECTION)
    VELCG_NAMED_SECTION(Documentation, DOCUMENTATION_SECTION)
#undef VELCG_NAMED_SECTION

    // Takes ownership of builder and builds the section table with it.
    // A null builder raises "VelCG:VelCGFile:NullBuilder"; a builder that
    // builds no table leaves the file without sections.
    VelCGFile(const std::string& name, std::unique_ptr<VelCGFileContentBuilder> builder);

private:
    void reportWrittenFile();

    std::unique_ptr<VelCGFileContent> content_;
    // The section of every slot, filled once: the content's sections never
    // change after construction, and this spares a step on every section
    // access. A slot the file has no section for holds the content's
    // stand-in from its first use on.
    std::array<FileSection*, kNumberOfSectionSlots> sectionsBySlot_{};
    std::wstring name_;
    std::string nameAscii_;
    std::string baseName_;
    std::string nameWithoutExtension_;
    std::string type_;
    std::string creator_;
    std::vector<std::string> systemsInFile_;
    boost::unordered_set<std::string> systemsSeen_;
    bool filtered_ = false;
    bool writtenToDisk_ = false;
    bool indent_ = false;
    bool shared_ = false;
    bool sharedType_ = false;
    bool deferredIncludeCoderTypes_ = false;
    std::string codeTemplate_;
    std::string outputDirectory_;
    std::string group_;
    std::string definedMacro_;
    bool notEmpty_ = false;
    // Set by the first writeSectionToFile: from then on, what does not reach
    // the file is reported once (reportWrittenFile).
    bool writingStarted_ = false;
    bool writingReported_ = false;
    // Whether a written section held any text.
    bool wroteText_ = false;
    CustomContents customContents_;
};

} // namespace VelCG
