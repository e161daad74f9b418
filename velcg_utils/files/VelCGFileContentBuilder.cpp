#include "velcg/VelCGFileContentBuilder.hpp"

#include <cassert>

#include "FileKindSections.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/FunctionsSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGFileContent.hpp"

namespace VelCG {

// Base builder: every step does nothing.

VelCGFileContentBuilder::VelCGFileContentBuilder() = default;
VelCGFileContentBuilder::~VelCGFileContentBuilder() = default;

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

VelCGFileContent* VelCGFileContentBuilder::getFileContent() { return content_.release(); }

void VelCGFileContentBuilder::startContent() { content_ = std::make_unique<VelCGFileContent>(); }

void VelCGFileContentBuilder::placeSection(VelCGFileSectionKind kind, std::unique_ptr<FileSection> section) {
    if (content_) content_->setSection(kind, std::move(section));
}

// Builders of the file kinds: each step looks its slot up in the table.

namespace {
std::unique_ptr<FileSection> makeSection(files_detail::SectionType type) {
    switch (type) {
        case files_detail::SectionType::Plain:
            return std::make_unique<FileSection>();
        case files_detail::SectionType::Includes:
            return std::make_unique<IncludesSection>();
        case files_detail::SectionType::Functions:
            return std::make_unique<FunctionsSection>();
    }
    assert(false && "a section table row names no section type");
    return std::make_unique<FileSection>();
}
} // namespace

VelCGFileKindContentBuilder::VelCGFileKindContentBuilder(files_detail::FileKind fileKind)
    : fileKind_(fileKind) {}

VelCGFileKindContentBuilder::~VelCGFileKindContentBuilder() = default;

void VelCGFileKindContentBuilder::buildContent() { startContent(); }

// Checks for a table before allocating, so that a builder whose buildContent
// was skipped allocates nothing.
void VelCGFileKindContentBuilder::buildSection(VelCGFileSectionKind kind) {
    if (!hasContent()) return;
    const files_detail::Slot& slot = files_detail::slotOf(fileKind_, kind);
    if (slot.present) placeSection(kind, makeSection(slot.type));
}

void VelCGFileKindContentBuilder::buildBannerSection() { buildSection(BANNER_SECTION); }
void VelCGFileKindContentBuilder::buildIncludesSection() { buildSection(INCLUDES_SECTION); }
void VelCGFileKindContentBuilder::buildModelTypesIncludesSection() {
    buildSection(MODELTYPES_INCLUDES_SECTION);
}
void VelCGFileKindContentBuilder::buildModelTypesDefinesSection() {
    buildSection(MODELTYPES_DEFINES_SECTION);
}
void VelCGFileKindContentBuilder::buildDefinesSection() { buildSection(DEFINES_SECTION); }
void VelCGFileKindContentBuilder::buildModelTypesTypedefsSection() {
    buildSection(MODELTYPES_TYPEDEFS_SECTION);
}
void VelCGFileKindContentBuilder::buildIntrinsicTypesSection() { buildSection(INTRINSIC_TYPES_SECTION); }
void VelCGFileKindContentBuilder::buildPrimitiveTypedefsSection() {
    buildSection(PRIMITIVE_TYPEDEFS_SECTION);
}
void VelCGFileKindContentBuilder::buildUserTopSection() { buildSection(USERTOP_SECTION); }
void VelCGFileKindContentBuilder::buildTypedefsSection() { buildSection(TYPEDEFS_SECTION); }
void VelCGFileKindContentBuilder::buildForwardDeclarationsSection() { buildSection(FORWARD_DECLS_SECTION); }
void VelCGFileKindContentBuilder::buildEnumsSection() { buildSection(ENUMERATIONS_SECTION); }
void VelCGFileKindContentBuilder::buildDefinitionsSection() { buildSection(DEFINITIONS_SECTION); }
void VelCGFileKindContentBuilder::buildExternDataSection() { buildSection(EXTERN_DATA_SECTION); }
void VelCGFileKindContentBuilder::buildExternFcnsSection() { buildSection(EXTERN_FCNS_SECTION); }
void VelCGFileKindContentBuilder::buildFcnPrototypesSection() { buildSection(FCN_PROTOTYPES_SECTION); }
void VelCGFileKindContentBuilder::buildDeclarationsSection() { buildSection(DECLARATIONS_SECTION); }
void VelCGFileKindContentBuilder::buildFunctionsSection() { buildSection(FUNCTIONS_SECTION); }
void VelCGFileKindContentBuilder::buildCompilerErrorsSection() { buildSection(COMPILER_ERRORS_SECTION); }
void VelCGFileKindContentBuilder::buildCompilerWarningsSection() { buildSection(COMPILER_WARNINGS_SECTION); }
void VelCGFileKindContentBuilder::buildDocumentationSection() { buildSection(DOCUMENTATION_SECTION); }
void VelCGFileKindContentBuilder::buildUserBottomSection() { buildSection(USERBOTTOM_SECTION); }

VelCGModuleFileContentBuilder::VelCGModuleFileContentBuilder()
    : VelCGFileKindContentBuilder(files_detail::FileKind::Module) {}
VelCGModuleFileContentBuilder::~VelCGModuleFileContentBuilder() = default;

VelCGSGenericFileContentBuilder::VelCGSGenericFileContentBuilder()
    : VelCGFileKindContentBuilder(files_detail::FileKind::Generic) {}
VelCGSGenericFileContentBuilder::~VelCGSGenericFileContentBuilder() = default;

VelCGSDataTypesFileContentBuilder::VelCGSDataTypesFileContentBuilder()
    : VelCGFileKindContentBuilder(files_detail::FileKind::DataTypes) {}
VelCGSDataTypesFileContentBuilder::~VelCGSDataTypesFileContentBuilder() = default;

} // namespace VelCG
