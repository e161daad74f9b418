#include "velcg/VelCGFileContentBuilder.hpp"

#include "velcg/FileSection.hpp"
#include "velcg/FunctionsSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGFileContent.hpp"

namespace VelCG {

// Base builder: every step does nothing.

VelCGFileContentBuilder::~VelCGFileContentBuilder() {
    if (!handedOut_) delete content_;
}

void VelCGFileContentBuilder::buildContent() {}
void VelCGFileContentBuilder::buildBannerSection() {}
void VelCGFileContentBuilder::buildIncludesSection() {}
void VelCGFileContentBuilder::buildModelTypesIncludesSection() {}
void VelCGFileContentBuilder::buildModelTypesDefinesSection() {}
void VelCGFileContentBuilder::buildDefinesSection() {}
void VelCGFileContentBuilder::buildModelTypesTypedefsSection() {}
void VelCGFileContentBuilder::buildIntrinsicTypesSection() {}
void VelCGFileContentBuilder::buildPrimitiveTypedefsSection() {}
void VelCGFileContentBuilder::buildUserTopSection() {}
void VelCGFileContentBuilder::buildTypedefsSection() {}
void VelCGFileContentBuilder::buildForwardDeclarationsSection() {}
void VelCGFileContentBuilder::buildEnumsSection() {}
void VelCGFileContentBuilder::buildDefinitionsSection() {}
void VelCGFileContentBuilder::buildExternDataSection() {}
void VelCGFileContentBuilder::buildExternFcnsSection() {}
void VelCGFileContentBuilder::buildFcnPrototypesSection() {}
void VelCGFileContentBuilder::buildDeclarationsSection() {}
void VelCGFileContentBuilder::buildFunctionsSection() {}
void VelCGFileContentBuilder::buildCompilerErrorsSection() {}
void VelCGFileContentBuilder::buildCompilerWarningsSection() {}
void VelCGFileContentBuilder::buildDocumentationSection() {}
void VelCGFileContentBuilder::buildUserBottomSection() {}

VelCGFileContent* VelCGFileContentBuilder::getFileContent() {
    if (content_) handedOut_ = true;
    return content_;
}

void VelCGFileContentBuilder::startContent() {
    if (!handedOut_) delete content_;
    content_ = new VelCGFileContent;
    handedOut_ = false;
}

void VelCGFileContentBuilder::placeSection(VelCGFileSectionKind kind, std::unique_ptr<FileSection> section) {
    if (content_) content_->setSection(kind, std::move(section));
}

namespace {
template <class Section>
std::unique_ptr<FileSection> make() {
    return std::make_unique<Section>();
}
} // namespace

// Each step below checks for a table before allocating, so a builder whose
// buildContent was skipped allocates nothing.
#define VELCG_BUILD_STEP(Builder, Step, Kind, Section)         \
    void Builder::Step() {                                     \
        if (hasContent()) placeSection(Kind, make<Section>()); \
    }

// Module files.

VelCGModuleFileContentBuilder::~VelCGModuleFileContentBuilder() = default;
void VelCGModuleFileContentBuilder::buildContent() { startContent(); }
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildIncludesSection, INCLUDES_SECTION, IncludesSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildDefinesSection, DEFINES_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildTypedefsSection, TYPEDEFS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildForwardDeclarationsSection, FORWARD_DECLS_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildExternDataSection, EXTERN_DATA_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildExternFcnsSection, EXTERN_FCNS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildFcnPrototypesSection, FCN_PROTOTYPES_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildDeclarationsSection, DECLARATIONS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildFunctionsSection, FUNCTIONS_SECTION, FunctionsSection)
VELCG_BUILD_STEP(VelCGModuleFileContentBuilder, buildDocumentationSection, DOCUMENTATION_SECTION, FileSection)

// Generic files.

VelCGSGenericFileContentBuilder::~VelCGSGenericFileContentBuilder() = default;
void VelCGSGenericFileContentBuilder::buildContent() { startContent(); }
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildBannerSection, BANNER_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildIncludesSection, INCLUDES_SECTION, IncludesSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildModelTypesIncludesSection, MODELTYPES_INCLUDES_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildModelTypesDefinesSection, MODELTYPES_DEFINES_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildDefinesSection, DEFINES_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildModelTypesTypedefsSection, MODELTYPES_TYPEDEFS_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildIntrinsicTypesSection, INTRINSIC_TYPES_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildPrimitiveTypedefsSection, PRIMITIVE_TYPEDEFS_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildUserTopSection, USERTOP_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildTypedefsSection, TYPEDEFS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildForwardDeclarationsSection, FORWARD_DECLS_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildEnumsSection, ENUMERATIONS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildDefinitionsSection, DEFINITIONS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildExternDataSection, EXTERN_DATA_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildExternFcnsSection, EXTERN_FCNS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildFcnPrototypesSection, FCN_PROTOTYPES_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildDeclarationsSection, DECLARATIONS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildFunctionsSection, FUNCTIONS_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildCompilerErrorsSection, COMPILER_ERRORS_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildCompilerWarningsSection, COMPILER_WARNINGS_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildDocumentationSection, DOCUMENTATION_SECTION,
                 FileSection)
VELCG_BUILD_STEP(VelCGSGenericFileContentBuilder, buildUserBottomSection, USERBOTTOM_SECTION, FileSection)

// Data-types files.

VelCGSDataTypesFileContentBuilder::~VelCGSDataTypesFileContentBuilder() = default;
void VelCGSDataTypesFileContentBuilder::buildContent() { startContent(); }
VELCG_BUILD_STEP(VelCGSDataTypesFileContentBuilder, buildIncludesSection, INCLUDES_SECTION, IncludesSection)
VELCG_BUILD_STEP(VelCGSDataTypesFileContentBuilder, buildDefinesSection, DEFINES_SECTION, FileSection)
VELCG_BUILD_STEP(VelCGSDataTypesFileContentBuilder, buildTypedefsSection, TYPEDEFS_SECTION, FileSection)

#undef VELCG_BUILD_STEP

} // namespace VelCG
