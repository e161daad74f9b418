#include "velcg/VelCGFileContentBuilder.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "velcg/FileSection.hpp"
#include "velcg/VelCGFileContent.hpp"
#include "velcg/VelCGFileContentCreator.hpp"

using namespace VelCG;

namespace {

// Records every step the creator calls, then lets the module builder do it.
class RecordingBuilder : public VelCGModuleFileContentBuilder {
public:
    std::string calls;
    bool skipContent = false;

    void buildContent() override {
        calls += "content;";
        if (!skipContent) VelCGModuleFileContentBuilder::buildContent();
    }
#define VELCG_RECORD(Step, label)              \
    void Step() override {                     \
        calls += label ";";                    \
        VelCGModuleFileContentBuilder::Step(); \
    }                                          \
    static_assert(true, "") /* takes the semicolon after each use */
    VELCG_RECORD(buildBannerSection, "0");
    VELCG_RECORD(buildIncludesSection, "1");
    VELCG_RECORD(buildModelTypesIncludesSection, "2");
    VELCG_RECORD(buildModelTypesDefinesSection, "3");
    VELCG_RECORD(buildDefinesSection, "4");
    VELCG_RECORD(buildModelTypesTypedefsSection, "5");
    VELCG_RECORD(buildIntrinsicTypesSection, "6");
    VELCG_RECORD(buildPrimitiveTypedefsSection, "7");
    VELCG_RECORD(buildUserTopSection, "8");
    VELCG_RECORD(buildTypedefsSection, "9");
    VELCG_RECORD(buildForwardDeclarationsSection, "10");
    VELCG_RECORD(buildEnumsSection, "11");
    VELCG_RECORD(buildDefinitionsSection, "12");
    VELCG_RECORD(buildExternDataSection, "13");
    VELCG_RECORD(buildExternFcnsSection, "14");
    VELCG_RECORD(buildFcnPrototypesSection, "15");
    VELCG_RECORD(buildDeclarationsSection, "16");
    VELCG_RECORD(buildFunctionsSection, "17");
    VELCG_RECORD(buildCompilerErrorsSection, "18");
    VELCG_RECORD(buildCompilerWarningsSection, "19");
    VELCG_RECORD(buildDocumentationSection, "20");
    VELCG_RECORD(buildUserBottomSection, "21");
#undef VELCG_RECORD

    VelCGFileContent* getFileContent() override {
        calls += "get;";
        return VelCGModuleFileContentBuilder::getFileContent();
    }
};

} // namespace

TEST(VelCGFileContentBuilder, CreatorCallsEveryStepInKindOrder) {
    RecordingBuilder builder;
    auto content = VelCGFileContentCreator::createFileContent(builder);
    EXPECT_EQ("content;0;1;2;3;4;5;6;7;8;9;10;11;12;13;14;15;16;17;18;19;20;21;get;", builder.calls);
    ASSERT_NE(nullptr, content);
    EXPECT_TRUE(content->hasSection(FUNCTIONS_SECTION));
}

TEST(VelCGFileContentBuilder, WithoutATableNoStepBuildsAnything) {
    VelCGFileContentBuilder base;
    EXPECT_EQ(nullptr, VelCGFileContentCreator::createFileContent(base));

    RecordingBuilder withoutTable;
    withoutTable.skipContent = true;
    EXPECT_EQ(nullptr, VelCGFileContentCreator::createFileContent(withoutTable));
}

TEST(VelCGFileContentBuilder, HandsItsTableOutOnceAndLeavesItAloneAfterwards) {
    VelCGModuleFileContentBuilder builder;
    std::unique_ptr<VelCGFileContent> content = VelCGFileContentCreator::createFileContent(builder);
    ASSERT_NE(nullptr, content);
    const FileSection* includes = &content->getSection(INCLUDES_SECTION);
    EXPECT_EQ(nullptr, builder.getFileContent()) << "a second owner would delete the table twice";
    builder.buildIncludesSection();
    EXPECT_EQ(includes, &content->getSection(INCLUDES_SECTION))
        << "a later step replaced a handed-out section";

    builder.buildContent();
    std::unique_ptr<VelCGFileContent> next(builder.getFileContent());
    ASSERT_NE(nullptr, next);
    EXPECT_NE(content.get(), next.get());
}
