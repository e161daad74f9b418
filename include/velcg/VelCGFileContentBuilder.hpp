#pragma once

#include <memory>

#include "velcg/Export.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG {

class FileSection;
class VelCGFileContent;

namespace files_detail {
enum class FileKind : int;
} // namespace files_detail

// Builds the section table of one kind of file, one step per section kind.
// VelCGFileContentCreator::createFileContent drives a builder: buildContent,
// then the 22 section steps in kind order, then getFileContent.
//
// The base implements every step as doing nothing. A concrete builder's
// buildContent allocates the empty table; each of its section steps places
// a new section, and does nothing while no table exists.
//
// Ownership: the builder owns the table it allocated until getFileContent
// hands it out; from then on the caller owns it and destroying the builder
// leaves it alone.
class VELCG_API VelCGFileContentBuilder {
public:
    VelCGFileContentBuilder();
    VelCGFileContentBuilder(const VelCGFileContentBuilder&) = delete;
    VelCGFileContentBuilder& operator=(const VelCGFileContentBuilder&) = delete;
    virtual ~VelCGFileContentBuilder();

    virtual void buildContent();
    virtual void buildBannerSection();
    virtual void buildIncludesSection();
    virtual void buildModelTypesIncludesSection();
    virtual void buildModelTypesDefinesSection();
    virtual void buildDefinesSection();
    virtual void buildModelTypesTypedefsSection();
    virtual void buildIntrinsicTypesSection();
    virtual void buildPrimitiveTypedefsSection();
    virtual void buildUserTopSection();
    virtual void buildTypedefsSection();
    virtual void buildForwardDeclarationsSection();
    virtual void buildEnumsSection();
    virtual void buildDefinitionsSection();
    virtual void buildExternDataSection();
    virtual void buildExternFcnsSection();
    virtual void buildFcnPrototypesSection();
    virtual void buildDeclarationsSection();
    virtual void buildFunctionsSection();
    virtual void buildCompilerErrorsSection();
    virtual void buildCompilerWarningsSection();
    virtual void buildDocumentationSection();
    virtual void buildUserBottomSection();

    // Hands out the table built so far, once: the caller takes ownership,
    // and later calls answer null until buildContent starts a new table.
    // Null as well when buildContent allocated none.
    virtual VelCGFileContent* getFileContent();

protected:
    // Allocates a new empty table (dropping one not yet handed out).
    void startContent();
    bool hasContent() const { return content_ != nullptr; }
    // Places section in the kind's slot; does nothing without a table.
    void placeSection(VelCGFileSectionKind kind, std::unique_ptr<FileSection> section);

private:
    std::unique_ptr<VelCGFileContent> content_;
};

// The builder of one file kind: buildContent allocates the table, and each
// section step places the section of its kind when the library's table of
// the file kinds' sections gives the file kind one (an IncludesSection, a
// FunctionsSection or a plain FileSection, as the table says) and does
// nothing otherwise. The three builders below differ only in their file kind.
class VELCG_API VelCGFileKindContentBuilder : public VelCGFileContentBuilder {
public:
    ~VelCGFileKindContentBuilder() override;
    void buildContent() override;
    void buildBannerSection() override;
    void buildIncludesSection() override;
    void buildModelTypesIncludesSection() override;
    void buildModelTypesDefinesSection() override;
    void buildDefinesSection() override;
    void buildModelTypesTypedefsSection() override;
    void buildIntrinsicTypesSection() override;
    void buildPrimitiveTypedefsSection() override;
    void buildUserTopSection() override;
    void buildTypedefsSection() override;
    void buildForwardDeclarationsSection() override;
    void buildEnumsSection() override;
    void buildDefinitionsSection() override;
    void buildExternDataSection() override;
    void buildExternFcnsSection() override;
    void buildFcnPrototypesSection() override;
    void buildDeclarationsSection() override;
    void buildFunctionsSection() override;
    void buildCompilerErrorsSection() override;
    void buildCompilerWarningsSection() override;
    void buildDocumentationSection() override;
    void buildUserBottomSection() override;

protected:
    explicit VelCGFileKindContentBuilder(files_detail::FileKind fileKind);

private:
    void buildSection(VelCGFileSectionKind kind);

    files_detail::FileKind fileKind_;
};

// Builds the sections of a module file (VelCGModuleFile).
class VELCG_API VelCGModuleFileContentBuilder : public VelCGFileKindContentBuilder {
public:
    VelCGModuleFileContentBuilder();
    ~VelCGModuleFileContentBuilder() override;
};

// Builds the sections of a generic file (VelCGGenericFile): all 22.
class VELCG_API VelCGSGenericFileContentBuilder : public VelCGFileKindContentBuilder {
public:
    VelCGSGenericFileContentBuilder();
    ~VelCGSGenericFileContentBuilder() override;
};

// Builds the sections of a data-types file (VelCGDataTypesFile).
class VELCG_API VelCGSDataTypesFileContentBuilder : public VelCGFileKindContentBuilder {
public:
    VelCGSDataTypesFileContentBuilder();
    ~VelCGSDataTypesFileContentBuilder() override;
};

} // namespace VelCG
