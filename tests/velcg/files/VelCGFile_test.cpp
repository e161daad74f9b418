#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "ExpectedFile.hpp"
#include "files/FileTesting.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/FunctionsSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileContentBuilder.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

using namespace VelCG;
using files_testing::bytesWrittenBy;

namespace {

// One letter per kind from -1 to 23: '.' no section, 'S' FileSection,
// 'I' IncludesSection, 'F' FunctionsSection.
std::string layout(const VelCGFile& file) {
    std::string out;
    for (int k = -1; k <= 23; ++k) {
        auto kind = static_cast<VelCGFileSectionKind>(k);
        const FileSection& s = file.getFileSection(kind);
        out += !file.hasSection(kind)                      ? '.'
               : dynamic_cast<const IncludesSection*>(&s)  ? 'I'
               : dynamic_cast<const FunctionsSection*>(&s) ? 'F'
                                                           : 'S';
    }
    return out;
}

// A file built by whatever builder the test gives it.
class FileBuiltWith : public VelCGFile {
public:
    explicit FileBuiltWith(std::unique_ptr<VelCGFileContentBuilder> builder)
        : VelCGFile("custom.c", std::move(builder)) {}
};

std::string writeSection(VelCGFile& file, VelCGFileSectionKind kind) {
    return bytesWrittenBy([&](std::FILE* f) { file.writeSectionToFile(kind, f); });
}

} // namespace

// Whether F publishes the named accessor of a section (a compile-time test:
// each kind makes public only the sections it builds).
#define VELCG_HAS_PUBLIC_ACCESSOR(Name)                                                       \
    template <class F, class = void>                                                          \
    struct Has##Name : std::false_type {};                                                    \
    template <class F>                                                                        \
    struct Has##Name<F, std::void_t<decltype(std::declval<const F&>().get##Name##Section())>> \
        : std::true_type {};
VELCG_HAS_PUBLIC_ACCESSOR(Functions)
VELCG_HAS_PUBLIC_ACCESSOR(Enums)
VELCG_HAS_PUBLIC_ACCESSOR(Typedefs)
#undef VELCG_HAS_PUBLIC_ACCESSOR

static_assert(HasTypedefs<VelCGDataTypesFile>::value && !HasFunctions<VelCGDataTypesFile>::value,
              "a data-types file has Includes, Defines and Typedefs only");
static_assert(HasFunctions<VelCGModuleFile>::value && !HasEnums<VelCGModuleFile>::value,
              "a module file has no Enums section");
static_assert(HasEnums<VelCGGenericFile>::value && HasFunctions<VelCGGenericFile>::value,
              "a generic file has every section");

TEST(VelCGFile, DerivesBaseNameAndNameWithoutExtensionFromTheName) {
    struct Case {
        const char* name;
        const char* baseName;
        const char* withoutExtension;
    } cases[] = {
        {"src/model.c", "model", "src/model"},
        {"Makefile", "Makefile", "Makefile"},
        {"a.b.c", "a.b", "a.b"},
        {"dir.d/file", "file", "dir"}, // the last dot may stand in a directory
        {".profile", "", ""},
        {"dir/", ".", "dir/"},
        {"up/..", "..", "up/."},
        {"", "", ""},
    };
    for (const Case& c : cases) {
        VelCGGenericFile f(c.name);
        EXPECT_EQ(c.baseName, f.getBaseName()) << c.name;
        EXPECT_EQ(c.withoutExtension, f.getNameWithoutExtension()) << c.name;
        EXPECT_EQ(c.name, f.getNameAscii());
    }
    EXPECT_EQ(L"mod\u00e9.c", VelCGModuleFile("mod\xc3\xa9.c").getName());
    // A name that is not UTF-8 cannot be converted and is refused.
    EXPECT_EQ("i18n:InvalidText", testing_support::diagnosticOf([] { VelCGGenericFile("bad\xff.c"); }));
}

TEST(VelCGFile, SystemsAreDeduplicatedOnAddButKeptAsGivenOnSet) {
    VelCGModuleFile f("m.c");
    f.addSystemToFile("s1");
    f.addSystemToFile("s2");
    f.addSystemToFile("s1");
    EXPECT_EQ((std::vector<std::string>{"s1", "s2"}), f.getSystemsInFile());
    f.setSystemsInFile({"s1", "s1"});
    f.addSystemToFile("s1");
    f.addSystemToFile("s2");
    EXPECT_EQ((std::vector<std::string>{"s1", "s1", "s2"}), f.getSystemsInFile());
}

TEST(VelCGFile, EmptinessFollowsSectionsAndTheNotEmptyMark) {
    VelCGModuleFile f("m.c");
    EXPECT_TRUE(f.isEmpty());
    f.setIsNotEmpty();
    EXPECT_FALSE(f.isEmpty());
    f.clearContents();
    EXPECT_TRUE(f.isEmpty());
    f.getDefinesSection().addContent("#define X\n");
    EXPECT_FALSE(f.isEmpty());
    f.clearContents();
    EXPECT_TRUE(f.isEmpty());
    EXPECT_EQ("", f.getDefinesSection().getContent());
}

// Text for a section the file lacks is dropped (FileSection_test.cpp, with
// the warning in VelCGFile_warnings.txt); the named accessors reach the
// kind's section (FileClassBindings_test.cpp).
TEST(VelCGFile, EachKindBuildsItsOwnSectionTable) {
    //         kind: -1 0         1         2
    //                  0123456789012345678901234
    EXPECT_EQ("..I..S....SS..SSSSF..S...", layout(VelCGModuleFile("m.c")));
    EXPECT_EQ(".SISSSSSSSSSSSSSSSSSSSS..", layout(VelCGGenericFile("g.txt")));
    EXPECT_EQ("..I..S....S..............", layout(VelCGDataTypesFile("types.h")));
    // A builder that allocates no table leaves the file without sections.
    EXPECT_EQ(".........................",
              layout(FileBuiltWith(std::make_unique<VelCGFileContentBuilder>())));
    EXPECT_EQ("VelCG:VelCGFile:NullBuilder",
              testing_support::diagnosticOf([] { FileBuiltWith file(nullptr); }));
}

namespace {
// Writes every section of the file in kind order, as a generator does.
void writeAllSections(VelCGFile& file) {
    bytesWrittenBy([&](std::FILE* f) {
        for (int k = BANNER_SECTION; k <= USERBOTTOM_SECTION; ++k)
            file.writeSectionToFile(static_cast<VelCGFileSectionKind>(k), f);
    });
}
} // namespace

// What each way of losing text warns (VelCGFile_warnings.txt): the file,
// the section and how many bytes.
TEST(VelCGFile, WarningsAboutLostTextNameTheFileAndTheSection) {
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"text for a section the file lacks",
         [] { VelCGDataTypesFile("t.h").getFileSection(FUNCTIONS_SECTION).addContent("void f(void);\n"); }},
        {"a module file's banner",
         [] { VelCGModuleFile("m.c").getFileSection(BANNER_SECTION).addContent_cstr("/* m */\n"); }},
        {"a kind outside the table",
         [] {
             VelCGDataTypesFile("t.h")
                 .getFileSection(static_cast<VelCGFileSectionKind>(30))
                 .addFragment(files_testing::fragment("x"));
         }},
        {"a file written without text, when marked written",
         [] {
             VelCGDataTypesFile f("t.h");
             writeAllSections(f);
             f.setIsWrittenToDisk(true);
             f.setIsWrittenToDisk(true);
         }},
        {"a file written without text and never marked, when destroyed",
         [] {
             VelCGDataTypesFile f("t.h");
             writeAllSections(f);
         }},
        {"a file with only required includes",
         [] {
             VelCGDataTypesFile f("t.h");
             static_cast<IncludesSection&>(f.getIncludesSection()).addRequiredInclude("a.h");
             writeAllSections(f);
             f.setIsWrittenToDisk(true);
         }},
        {"a file marked non-empty",
         [] {
             VelCGDataTypesFile f("t.h");
             f.setIsNotEmpty();
             writeAllSections(f);
         }},
        {"a file marked written that the library never wrote",
         [] { VelCGDataTypesFile("t.h").setIsWrittenToDisk(true); }},
    };
    std::string rendered;
    for (const auto& [what, run] : cases) {
        vel::diag::WarningCollector warnings;
        run();
        rendered += std::string(what) + "\n";
        for (const vel::diag::Diagnostic& d : warnings.warnings()) rendered += "  " + d.message() + "\n";
    }
    EXPECT_MATCHES_FILE(rendered, __FILE__, "VelCGFile_warnings.txt");
}

TEST(VelCGFile, WritingASectionAppendsUnplacedCustomSectionsFirst) {
    VelCGModuleFile f("m.c");
    CustomContents& custom = f.getCustomContent();
    custom.addCustomSection("Extra", DEFINES_SECTION);
    custom.addContentToSection("Extra", "#define EXTRA 1\n");
    custom.addCustomSection("Top", BANNER_SECTION);
    custom.addContentToSection("Top", "/* banner */\n");
    f.getDefinesSection().addContent("#define A 1\n");
    // A refused write consumes no custom section.
    EXPECT_EQ("VelCG:VelCGFile:NullStream(m.c, Defines)", testing_support::diagnosticWithArgumentsOf([&] {
                  f.writeSectionToFile(DEFINES_SECTION, nullptr);
              }));

    EXPECT_EQ("#define A 1\n#define EXTRA 1\n", writeSection(f, DEFINES_SECTION));
    // Writing again writes the same text; the custom section is not appended twice.
    EXPECT_EQ("#define A 1\n#define EXTRA 1\n", writeSection(f, DEFINES_SECTION));
    // A module file has no banner: nothing is written and the custom section stays unplaced.
    EXPECT_EQ("", writeSection(f, BANNER_SECTION));
    EXPECT_EQ("/* banner */\n", custom.getCustomSectionContent("Top", "test"));
    EXPECT_EQ("", writeSection(f, static_cast<VelCGFileSectionKind>(40)));
}

TEST(VelCGFile, CustomContentThatNeverReachesAWrittenFileIsReportedOnceWhenTheFileIsDestroyed) {
    vel::diag::WarningCollector warnings;
    {
        VelCGModuleFile f("m.c");
        CustomContents& custom = f.getCustomContent();
        const struct {
            const char* name;
            VelCGFileSectionKind kind;
            const char* content;
        } declared[] = {
            {"Placed", DEFINES_SECTION, "#define PLACED\n"},     // token placed, never retrieved
            {"Appended", DEFINES_SECTION, "#define APPENDED\n"}, // appended when Defines is written
            {"Top", BANNER_SECTION, "/* banner */\n"},           // a module file has no banner
            {"Doc", DOCUMENTATION_SECTION, "doc"},               // never appended
            {"Taken", DECLARATIONS_SECTION, "int taken;\n"},     // retrieved by the template
            {"Blank", FUNCTIONS_SECTION, ""},                    // nothing to lose
        };
        for (const auto& d : declared) {
            custom.addCustomSection(d.name, d.kind);
            custom.addContentToSection(d.name, d.content);
        }
        custom.setCustomTokenInUse("Placed");
        EXPECT_EQ("int taken;\n", custom.getCustomSectionContent("Taken", "test"));

        std::string written;
        for (int k = BANNER_SECTION; k <= USERBOTTOM_SECTION; ++k)
            written += writeSection(f, static_cast<VelCGFileSectionKind>(k));
        EXPECT_EQ("#define APPENDED\n", written);
        EXPECT_TRUE(warnings.warnings().empty()) << "the file can still be written";
    }
    const std::vector<std::string> lost = {
        "VelCG:CustomContents:NoBuiltinSection(m.c, Top, Banner, 13)",
        "VelCG:CustomContents:PlacedNotRetrieved(m.c, Placed, 15)",
        "VelCG:CustomContents:NotWritten(m.c, Doc, Documentation, 3)",
    };
    EXPECT_EQ(lost, files_testing::warningsOf(warnings));

    // A file never written loses nothing to its output, so it says nothing.
    {
        VelCGModuleFile unwritten("u.c");
        unwritten.getCustomContent().addCustomSection("Top", BANNER_SECTION);
        unwritten.getCustomContent().addContentToSection("Top", "/* banner */\n");
    }
    EXPECT_EQ(lost, files_testing::warningsOf(warnings));
}
