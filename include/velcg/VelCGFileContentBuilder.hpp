#pragma once

#include <memory>

#include "velcg/Export.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG {

class FileSection;
class VelCGFileContent;

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
    VelCGFileContentBuilder() = default;
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

    // The table built so far (null if buildContent allocated none). The
    // caller takes ownership of it.
    virtual VelCGFileContent* getFileContent();

protected:
    // Allocates a new empty table (dropping one not yet handed out).
    void startContent();
    bool hasContent() const { return content_ != nullptr; }
    // Places section in the kind's slot; does nothing without a table.
    void placeSection(VelCGFileSectionKind kind, std::unique_ptr<FileSection> section);

private:
    VelCGFileContent* content_ = nullptr;
    bool handedOut_ = false;
};

// Builds the module file's sections: Includes (IncludesSection), Defines,
// Typedefs, ForwardDecls, ExternData, ExternFcns, FcnPrototypes,
// Declarations, Functions (FunctionsSection) and Documentation.
class VELCG_API VelCGModuleFileContentBuilder : public VelCGFileContentBuilder {
public:
    ~VelCGModuleFileContentBuilder() override;
    void buildContent() override;
    void buildIncludesSection() override;
    void buildDefinesSection() override;
    void buildTypedefsSection() override;
    void buildForwardDeclarationsSection() override;
    void buildExternDataSection() override;
    void buildExternFcnsSection() override;
    void buildFcnPrototypesSection() override;
    void buildDeclarationsSection() override;
    void buildFunctionsSection() override;
    void buildDocumentationSection() override;
};

// Builds all 22 sections of a generic file; Includes is an IncludesSection,
// every other one (Functions included) a plain FileSection.
class VELCG_API VelCGSGenericFileContentBuilder : public VelCGFileContentBuilder {
public:
    ~VelCGSGenericFileContentBuilder() override;
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
};

// Builds the data-types file's sections: Includes (IncludesSection),
// Defines and Typedefs.
class VELCG_API VelCGSDataTypesFileContentBuilder : public VelCGFileContentBuilder {
public:
    ~VelCGSDataTypesFileContentBuilder() override;
    void buildContent() override;
    void buildIncludesSection() override;
    void buildDefinesSection() override;
    void buildTypedefsSection() override;
};

} // namespace VelCG
