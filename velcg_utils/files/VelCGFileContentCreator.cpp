#include "velcg/VelCGFileContentCreator.hpp"

#include "velcg/VelCGFileContent.hpp"
#include "velcg/VelCGFileContentBuilder.hpp"

namespace VelCG {

std::unique_ptr<VelCGFileContent> VelCGFileContentCreator::createFileContent(
    VelCGFileContentBuilder& builder) {
    builder.buildContent();
    // One step per section kind, in kind order.
    builder.buildBannerSection();
    builder.buildIncludesSection();
    builder.buildModelTypesIncludesSection();
    builder.buildModelTypesDefinesSection();
    builder.buildDefinesSection();
    builder.buildModelTypesTypedefsSection();
    builder.buildIntrinsicTypesSection();
    builder.buildPrimitiveTypedefsSection();
    builder.buildUserTopSection();
    builder.buildTypedefsSection();
    builder.buildForwardDeclarationsSection();
    builder.buildEnumsSection();
    builder.buildDefinitionsSection();
    builder.buildExternDataSection();
    builder.buildExternFcnsSection();
    builder.buildFcnPrototypesSection();
    builder.buildDeclarationsSection();
    builder.buildFunctionsSection();
    builder.buildCompilerErrorsSection();
    builder.buildCompilerWarningsSection();
    builder.buildDocumentationSection();
    builder.buildUserBottomSection();
    return std::unique_ptr<VelCGFileContent>(builder.getFileContent());
}

} // namespace VelCG
