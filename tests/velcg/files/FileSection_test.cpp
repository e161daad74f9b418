#include "velcg/FileSection.hpp"

#include <cctype>
#include <cstdio>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "StartLatch.hpp"
#include "TempDir.hpp"
#include "files/FileTesting.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGFileContent.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

using namespace VelCG;
using files_testing::bytesWrittenBy;
using files_testing::fragment;
using files_testing::warningsOf;
using Strings = std::vector<std::string>;
using testing_support::diagnosticOf;

// Text after an embedded NUL is dropped with a warning.
TEST(FileSection, RendersPrintsAndWritesFragmentsInOrderByteForByte) {
    vel::diag::WarningCollector warnings;
    FileSection s;
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ("", s.getContent());
    s.addContent_cstr(""); // an empty string is still a fragment
    EXPECT_FALSE(s.isEmpty());
    EXPECT_EQ("", s.getContent());

    s.addContent("int a;\n");
    s.addContent(std::string("x\0yz", 4));
    s.addContent(std::string("\0", 1));
    s.addFragment(fragment("\xff\r\n"));
    const std::string expected = "int a;\nx\xff\r\n";
    EXPECT_EQ((Strings{"VelCG:FileSection:TextAfterNul(3, 4)", "VelCG:FileSection:TextAfterNul(1, 1)"}),
              warningsOf(warnings));
    EXPECT_EQ(expected, s.getContent());
    std::ostringstream printed;
    s.printToStream(printed);
    EXPECT_EQ(expected, printed.str());
    EXPECT_EQ(expected, bytesWrittenBy([&](std::FILE* f) { s.writeToFile(f); }));

    // A clone shares the fragments but grows independently.
    std::unique_ptr<FileSection> copy = s.clone();
    copy->addContent("more");
    EXPECT_EQ(expected + "more", copy->getContent());
    EXPECT_EQ(expected, s.getContent());

    s.clearContent();
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ("", s.getContent());
}

namespace {
// A fragment class of a code generator's own: it writes something other
// than its content, so a section must let it write itself.
class UpperCaseFragment : public StringFileSectionFragment {
public:
    explicit UpperCaseFragment(std::string text) : StringFileSectionFragment(std::move(text)) {}
    void writeToFile(std::FILE* stream) const override {
        std::string upper = getContent();
        for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        std::fputs(upper.c_str(), stream);
    }
};
} // namespace

TEST(FileSection, WritesManyAndLargeFragmentsExactlyAndLetsOtherClassesWriteThemselves) {
    // Fragment sizes around the sizes at which writing gathers bytes into
    // blocks, with fragments of another class between them.
    FileSection s;
    std::string expected, rendered;
    std::size_t n = 0;
    for (std::size_t size : {1u, 63u, 4096u, 16383u, 16384u, 16385u, 40000u, 0u, 7u}) {
        for (int repeat = 0; repeat < 3; ++repeat) {
            std::string text(size, static_cast<char>('a' + n++ % 26));
            s.addFragment(fragment(text));
            expected += text;
            rendered += text;
        }
        s.addFragment(boost::shared_ptr<FileSectionFragment>(new UpperCaseFragment("mid;")));
        expected += "MID;";
        rendered += "mid;";
    }
    for (int i = 0; i < 10000; ++i) {
        const std::string line = "line " + std::to_string(i) + "\n";
        s.addContent(line);
        expected += line;
        rendered += line;
    }
    EXPECT_EQ(expected, bytesWrittenBy([&](std::FILE* f) { s.writeToFile(f); }));
    // Writing does not consume the section.
    EXPECT_EQ(expected + expected, bytesWrittenBy([&](std::FILE* f) {
                  s.writeToFile(f);
                  s.writeToFile(f);
              }));
    // Rendering asks every fragment for its content.
    EXPECT_EQ(rendered, s.getContent());
}

TEST(FileSection, RejectsNullArgumentsAndRefusedWritesWithDiagnostics) {
    FileSection s;
    EXPECT_EQ("VelCG:FileSection:NullContent", diagnosticOf([&] { s.addContent_cstr(nullptr); }));
    EXPECT_EQ("VelCG:FileSection:NullFragment", diagnosticOf([&] { s.addFragment(nullptr); }));
    EXPECT_EQ("VelCG:FileSection:NullStream", diagnosticOf([&] { s.writeToFile(nullptr); }));
    EXPECT_TRUE(s.isEmpty());

    // A stream open for reading only takes no bytes.
    testing_support::TempDir dir;
    const std::filesystem::path path = dir / "read-only";
    std::fclose(std::fopen(path.string().c_str(), "wb"));
    std::FILE* readOnly = std::fopen(path.string().c_str(), "rb");
    ASSERT_NE(nullptr, readOnly);
    s.addContent("text");
    IncludesSection includes;
    includes.addInclude("a.h", false);
    EXPECT_EQ("VelCG:FileSection:WriteFailed", diagnosticOf([&] { s.writeToFile(readOnly); }));
    EXPECT_EQ("VelCG:FileSection:WriteFailed", diagnosticOf([&] { includes.writeToFile(readOnly); }));
    EXPECT_EQ("VelCG:FileSection:NullStream", diagnosticOf([&] { includes.writeToFile(nullptr); }));
    std::fclose(readOnly);
}

TEST(VelCGFileSectionKind, NamesEveryKindAndConvertsEnumeratorNames) {
    std::string all;
    for (int k = -1; k <= 23; ++k)
        all += getScrivSectionNameFromEnum(static_cast<VelCGFileSectionKind>(k)) + ",";
    EXPECT_EQ(
        ",Banner,Includes,ModelTypesIncludes,ModelTypesDefines,Defines,ModelTypesTypedefs,"
        "IntrinsicTypes,PrimitiveTypedefs,UserTop,Typedefs,,Enums,Definitions,ExternData,ExternFcns,"
        "FcnPrototypes,Declarations,Functions,CompilerErrors,CompilerWarnings,Documentation,UserBottom,,,",
        all);

    for (int k = 0; k < kNumberOfSectionKinds; ++k) {
        auto kind = static_cast<VelCGFileSectionKind>(k);
        EXPECT_EQ(kind, getSectionKindFromEnumName(getSectionKindEnumName(kind)));
    }
    EXPECT_EQ(FUNCTIONS_SECTION, getSectionKindFromEnumName("FUNCTIONS_SECTION"));
    // Unknown names answer the banner kind, again on the second asking.
    EXPECT_EQ(BANNER_SECTION, getSectionKindFromEnumName("FUNCTION_SECTION"));
    EXPECT_EQ(BANNER_SECTION, getSectionKindFromEnumName("FUNCTION_SECTION"));
    EXPECT_EQ(BANNER_SECTION, getSectionKindFromEnumName(""));
}

TEST(VelCGFileSectionKind, EnumeratorNameConversionIsSafeFromManyThreads) {
    constexpr int kThreads = 4;
    testing_support::StartLatch start(kThreads);
    std::vector<std::thread> threads;
    std::vector<int> wrong(kThreads, 0);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &wrong, &start] {
            start.arriveAndWait();
            // Unknown names grow the shared table while known ones are read.
            for (int i = 0; i < 500; ++i) {
                if (getSectionKindFromEnumName("UNKNOWN_" + std::to_string(t) + "_" + std::to_string(i)) != 0)
                    ++wrong[t];
                if (getSectionKindFromEnumName("USERBOTTOM_SECTION") != USERBOTTOM_SECTION) ++wrong[t];
            }
        });
    }
    for (auto& th : threads) th.join();
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), wrong);
}

TEST(VelCGFileContent, EmptySectionStandsInForMissingAndOutOfRangeKinds) {
    VelCGFileContent content;
    content.setSection(DEFINES_SECTION, std::make_unique<FileSection>());
    EXPECT_TRUE(content.hasSection(DEFINES_SECTION));
    for (int k : {-1, 0, 10, 22, 23, 1000})
        EXPECT_FALSE(content.hasSection(static_cast<VelCGFileSectionKind>(k))) << k;

    // The empty section, and a clone of it, drop whatever is added and say
    // how much text they dropped, and where.
    content.setFileName("m.c");
    FileSection& missing = content.getSection(FUNCTIONS_SECTION);
    std::unique_ptr<FileSection> missingClone = missing.clone();
    for (FileSection* s : {&missing, missingClone.get()}) {
        vel::diag::WarningCollector warnings;
        s->addContent(std::string("dro\0ped", 7));
        s->addContent_cstr("drop");
        s->addFragment(fragment("dr"));
        s->addContent("");
        s->addContent_cstr(nullptr);
        s->addFragment(nullptr);
        EXPECT_TRUE(s->isEmpty());
        EXPECT_EQ("", s->getContent());
        const std::string where = ", Functions, m.c, file of its kind, Defines)";
        EXPECT_EQ((Strings{"VelCG:VelCGFileContent:MissingSection(7" + where,
                           "VelCG:VelCGFileContent:MissingSection(4" + where,
                           "VelCG:VelCGFileContent:MissingSection(2" + where}),
                  warningsOf(warnings));
    }
    // One stand-in per slot, and one for every kind outside the table.
    EXPECT_EQ(&missing, &content.getSection(FUNCTIONS_SECTION));
    EXPECT_NE(&missing, &content.getSection(BANNER_SECTION));
    EXPECT_EQ(&content.getSection(static_cast<VelCGFileSectionKind>(23)),
              &content.getSection(static_cast<VelCGFileSectionKind>(-5)));
    EXPECT_TRUE(content.isEmpty());

    content.getSection(DEFINES_SECTION).addContent("#define A 1\n");
    EXPECT_FALSE(content.isEmpty());

    // Copies clone the sections.
    VelCGFileContent copy(content);
    content.clearContents();
    EXPECT_TRUE(content.isEmpty());
    EXPECT_EQ("#define A 1\n", copy.getSection(DEFINES_SECTION).getContent());

    const char* invalidSlot = "VelCG:VelCGFileContent:InvalidSlot";
    EXPECT_EQ(invalidSlot, diagnosticOf([&] {
                  content.setSection(static_cast<VelCGFileSectionKind>(23), std::make_unique<FileSection>());
              }));
    EXPECT_EQ(invalidSlot, diagnosticOf([&] { content.setSection(BANNER_SECTION, nullptr); }));
}
