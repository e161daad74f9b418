#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGFileContent.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

using namespace VelCG;

namespace {

// Bytes that `write` puts on a temporary C stream.
template <class Write>
std::string bytesWritten(Write write) {
    std::FILE* f = std::tmpfile();
    write(f);
    std::string out;
    std::rewind(f);
    for (int c; (c = std::fgetc(f)) != EOF;) out += static_cast<char>(c);
    std::fclose(f);
    return out;
}

template <class F>
std::string diagnosticOf(F&& f) {
    try {
        f();
    } catch (const vel::diag::Exception& e) {
        return e.identifier();
    }
    return "no diagnostic";
}

} // namespace

TEST(FileSection, RendersPrintsAndWritesFragmentsInOrderByteForByte) {
    FileSection s;
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ("", s.getContent());

    s.addContent("int a;\n");
    s.addContent(std::string("x\0y", 3)); // stops at the NUL
    s.addContent_cstr("");                // empty, but a fragment
    s.addFragment(boost::shared_ptr<FileSectionFragment>(new StringFileSectionFragment(std::string("\xff\r\n"))));

    EXPECT_FALSE(s.isEmpty());
    EXPECT_EQ("int a;\nx\xff\r\n", s.getContent());
    std::ostringstream printed;
    s.printToStream(printed);
    EXPECT_EQ("int a;\nx\xff\r\n", printed.str());
    EXPECT_EQ("int a;\nx\xff\r\n", bytesWritten([&](std::FILE* f) { s.writeToFile(f); }));

    // A clone shares the fragments but grows independently.
    std::unique_ptr<FileSection> copy = s.clone();
    copy->addContent("more");
    EXPECT_EQ("int a;\nx\xff\r\nmore", copy->getContent());
    EXPECT_EQ("int a;\nx\xff\r\n", s.getContent());

    s.clearContent();
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ("", s.getContent());
}

TEST(FileSection, OnlyEmptyStringsStillMakeASectionNonEmpty) {
    FileSection s;
    s.addContent("");
    EXPECT_FALSE(s.isEmpty());
    EXPECT_EQ("", s.getContent());
}

TEST(FileSection, RejectsNullArgumentsWithDiagnostics) {
    FileSection s;
    EXPECT_EQ("VelCG:FileSection:NullContent", diagnosticOf([&] { s.addContent_cstr(nullptr); }));
    EXPECT_EQ("VelCG:FileSection:NullFragment", diagnosticOf([&] { s.addFragment(nullptr); }));
    EXPECT_EQ("VelCG:FileSection:NullStream", diagnosticOf([&] { s.writeToFile(nullptr); }));
    EXPECT_TRUE(s.isEmpty());
}

TEST(VelCGFileSectionKind, NamesEveryKindAndConvertsEnumeratorNames) {
    std::string all;
    for (int k = -1; k <= 23; ++k) all += getScrivSectionNameFromEnum(static_cast<VelCGFileSectionKind>(k)) + ",";
    EXPECT_EQ(",Banner,Includes,ModelTypesIncludes,ModelTypesDefines,Defines,ModelTypesTypedefs,"
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
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &wrong] {
            for (int i = 0; i < 500; ++i) {
                // Unknown names grow the shared table while known ones are read.
                if (getSectionKindFromEnumName("UNKNOWN_" + std::to_string(t) + "_" + std::to_string(i)) != 0) ++wrong[t];
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
    for (int k : {-1, 0, 10, 22, 23, 1000}) EXPECT_FALSE(content.hasSection(static_cast<VelCGFileSectionKind>(k))) << k;

    FileSection& missing = content.getSection(FUNCTIONS_SECTION);
    missing.addContent("dropped");
    missing.addContent_cstr("dropped");
    missing.addFragment(boost::shared_ptr<FileSectionFragment>(new StringFileSectionFragment("dropped")));
    EXPECT_TRUE(missing.isEmpty());
    EXPECT_EQ("", missing.getContent());
    EXPECT_EQ(&missing, &content.getSection(static_cast<VelCGFileSectionKind>(-5)));
    EXPECT_TRUE(content.isEmpty());

    content.getSection(DEFINES_SECTION).addContent("#define A 1\n");
    EXPECT_FALSE(content.isEmpty());

    // Copies clone the sections.
    VelCGFileContent copy(content);
    content.clearContents();
    EXPECT_TRUE(content.isEmpty());
    EXPECT_EQ("#define A 1\n", copy.getSection(DEFINES_SECTION).getContent());

    EXPECT_EQ("VelCG:VelCGFileContent:InvalidSlot",
              diagnosticOf([&] { content.setSection(static_cast<VelCGFileSectionKind>(23), std::make_unique<FileSection>()); }));
    EXPECT_EQ("VelCG:VelCGFileContent:InvalidSlot", diagnosticOf([&] { content.setSection(BANNER_SECTION, nullptr); }));
}
