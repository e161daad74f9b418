#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

using namespace VelCG;

namespace {
std::string writeSection(VelCGFile& file, VelCGFileSectionKind kind) {
    std::FILE* f = std::tmpfile();
    file.writeSectionToFile(kind, f);
    std::string out(static_cast<std::size_t>(std::ftell(f)), '\0');
    std::rewind(f);
    if (!out.empty()) {
        EXPECT_EQ(out.size(), std::fread(&out[0], 1, out.size(), f));
    }
    std::fclose(f);
    return out;
}
} // namespace

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
        {"", "", ""},
    };
    for (const Case& c : cases) {
        VelCGGenericFile f(c.name);
        EXPECT_EQ(c.baseName, f.getBaseName()) << c.name;
        EXPECT_EQ(c.withoutExtension, f.getNameWithoutExtension()) << c.name;
        EXPECT_EQ(c.name, f.getNameAscii());
    }
    VelCGModuleFile utf8("mod\xc3\xa9.c");
    EXPECT_EQ(L"mod\u00e9.c", utf8.getName());
    EXPECT_STREQ("VelCG.VelCGModuleFile", utf8.getFullyQualifiedKorbTypeName());

    // A name that is not UTF-8 cannot be converted and is refused.
    EXPECT_THROW(VelCGGenericFile("bad\xff.c"), vel::diag::Exception);
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

TEST(VelCGFile, SectionsPresentDependOnTheFileKind) {
    VelCGDataTypesFile types("types.h");
    VelCGModuleFile module("m.c");
    VelCGGenericFile generic("g.txt");
    std::string present;
    for (VelCGFile* f : {static_cast<VelCGFile*>(&types), static_cast<VelCGFile*>(&module),
                         static_cast<VelCGFile*>(&generic)}) {
        for (int k = -1; k <= 23; ++k) present += f->hasSection(static_cast<VelCGFileSectionKind>(k)) ? 'x' : '.';
        present += '|';
    }
    EXPECT_EQ("..x..x....x..............|..x..x....xx..xxxxx..x...|.xxxxxxxxxxxxxxxxxxxxxx..|", present);

    // Text for a section the file lacks is dropped.
    types.getFileSection(FUNCTIONS_SECTION).addContent("void f(void);\n");
    EXPECT_EQ("", types.getFileSection(FUNCTIONS_SECTION).getContent());
    EXPECT_TRUE(types.isEmpty());
    EXPECT_EQ(&types.getIncludesSection(), &types.getFileSection(INCLUDES_SECTION));
    EXPECT_EQ(&generic.getCompilerWarningsSection(), generic.korb_getCompilerWarningsSection());
}

TEST(VelCGFile, WritingASectionAppendsUnplacedCustomSectionsFirst) {
    VelCGModuleFile f("m.c");
    CustomContents& custom = f.getCustomContent();
    custom.addCustomSection("Extra", DEFINES_SECTION);
    custom.addContentToSection("Extra", "#define EXTRA 1\n");
    custom.addCustomSection("Top", BANNER_SECTION);
    custom.addContentToSection("Top", "/* banner */\n");
    f.getDefinesSection().addContent("#define A 1\n");

    EXPECT_EQ("#define A 1\n#define EXTRA 1\n", writeSection(f, DEFINES_SECTION));
    // Writing again writes the same text; the custom section is not appended twice.
    EXPECT_EQ("#define A 1\n#define EXTRA 1\n", writeSection(f, DEFINES_SECTION));
    // A module file has no banner: nothing is written and the custom section stays unplaced.
    EXPECT_EQ("", writeSection(f, BANNER_SECTION));
    EXPECT_EQ("/* banner */\n", custom.getCustomSectionContent("Top", "test"));
    EXPECT_EQ("", writeSection(f, static_cast<VelCGFileSectionKind>(40)));

    try {
        f.writeSectionToFile(DEFINES_SECTION, nullptr);
        FAIL() << "no diagnostic";
    } catch (const vel::diag::Exception& e) {
        EXPECT_EQ("VelCG:VelCGFile:NullStream", e.identifier());
        EXPECT_EQ((std::vector<std::string>{"m.c", "Defines"}), e.arguments());
    }
}
