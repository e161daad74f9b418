#include <gtest/gtest.h>

#include <string>

#include "velcg/FunctionsSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGFileContent.hpp"
#include "velcg/VelCGFileContentBuilder.hpp"
#include "velcg/VelCGFileContentCreator.hpp"

using namespace VelCG;

namespace {

// One letter per slot: '.' empty, 'S' FileSection, 'I' includes, 'F' functions.
std::string layout(const VelCGFileContent& content) {
    std::string out;
    for (int k = 0; k < kNumberOfSectionSlots; ++k) {
        auto kind = static_cast<VelCGFileSectionKind>(k);
        if (!content.hasSection(kind)) {
            out += '.';
            continue;
        }
        const FileSection& s = content.getSection(kind);
        if (dynamic_cast<const IncludesSection*>(&s)) out += 'I';
        else if (dynamic_cast<const FunctionsSection*>(&s)) out += 'F';
        else out += 'S';
    }
    return out;
}

// Records the order in which the creator calls the steps.
class RecordingBuilder : public VelCGModuleFileContentBuilder {
public:
    std::string calls;
    bool skipContent = false;
    void buildContent() override {
        calls += "content;";
        if (!skipContent) VelCGModuleFileContentBuilder::buildContent();
    }
    void buildBannerSection() override { calls += "banner;"; }
    void buildIncludesSection() override {
        calls += "includes;";
        VelCGModuleFileContentBuilder::buildIncludesSection();
    }
    void buildUserBottomSection() override { calls += "userbottom;"; }
    VelCGFileContent* getFileContent() override {
        calls += "get;";
        return VelCGModuleFileContentBuilder::getFileContent();
    }
};

} // namespace

TEST(VelCGFileContentBuilder, EachKindBuildsItsOwnSectionTable) {
    VelCGModuleFileContentBuilder module;
    VelCGSGenericFileContentBuilder generic;
    VelCGSDataTypesFileContentBuilder dataTypes;
    VelCGFileContentBuilder base;
    //        slot: 0         1         2
    //              01234567890123456789012
    EXPECT_EQ(".I..S....SS..SSSSF..S..", layout(*VelCGFileContentCreator::createFileContent(module)));
    EXPECT_EQ("SISSSSSSSSSSSSSSSSSSSS.", layout(*VelCGFileContentCreator::createFileContent(generic)));
    EXPECT_EQ(".I..S....S.............", layout(*VelCGFileContentCreator::createFileContent(dataTypes)));
    EXPECT_EQ(nullptr, VelCGFileContentCreator::createFileContent(base));
}

TEST(VelCGFileContentBuilder, CreatorCallsStepsInKindOrderAndSkipsSectionsWithoutTable) {
    RecordingBuilder builder;
    auto content = VelCGFileContentCreator::createFileContent(builder);
    EXPECT_EQ("content;banner;includes;userbottom;get;", builder.calls);
    EXPECT_EQ(".I..S....SS..SSSSF..S..", layout(*content));

    RecordingBuilder withoutTable;
    withoutTable.skipContent = true;
    EXPECT_EQ(nullptr, VelCGFileContentCreator::createFileContent(withoutTable));
}
