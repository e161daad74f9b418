#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <boost/filesystem.hpp>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/FunctionsSection.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

using namespace VelCG;

namespace {

boost::shared_ptr<FileSectionFragment> text(const std::string& s) {
    return boost::shared_ptr<FileSectionFragment>(new StringFileSectionFragment(s));
}

template <class F>
std::string diagnosticOf(F&& f) {
    try {
        f();
    } catch (const vel::diag::Exception& e) {
        std::string out = e.identifier();
        for (const auto& a : e.arguments()) out += "|" + a;
        return out;
    }
    return "no diagnostic";
}

class FileRepScrivBridgeTest : public ::testing::Test {
protected:
    VelCGFileRepository repo;
    FileRepScrivBridge& bridge = repo.scrivBridge();
    VelCGModuleFile& module = repo.createModuleSourceFile("src/model.c", {0});
    VelCGGenericFile& generic = repo.createGenericFile("notes.txt");
    VelCGDataTypesFile& types = repo.createDataTypesFile("model_types.h");
};

} // namespace

TEST_F(FileRepScrivBridgeTest, ClassifiesNamesByTheTablesThatHoldThem) {
    struct Row {
        const char* name;
        const char* expected; // boolean, string, string array, section
    } rows[] = {
        {"Filter", "b..."}, {"IsEmpty", "b..."}, {"Name", ".s.."}, {"NameWithoutExtension", ".s.."},
        {"SystemsInFile", "..a."}, {"RequiredIncludes", "..a."}, {"Includes", ".s.f"}, {"Typedefs", ".s.f"},
        {"UserBottom", ".s.f"}, {"Types", "...."}, {"Filtered", "...."}, {"", "...."}, {"includes", "...."},
    };
    for (const Row& r : rows) {
        std::string got;
        got += bridge.isBooleanAttribute(r.name) ? 'b' : '.';
        got += bridge.isStringAttribute(r.name) ? 's' : '.';
        got += bridge.isStringArrayAttribute(r.name) ? 'a' : '.';
        got += bridge.isFileSectionAttribute(r.name) ? 'f' : '.';
        EXPECT_EQ(r.expected, got) << r.name;
    }
}

TEST_F(FileRepScrivBridgeTest, SetsAndReadsAttributesWithTheirQuirks) {
    bridge.setAttribute(0, "Type", "source");
    bridge.setAttribute(0, "Creator", "ert");
    bridge.setAttribute(0, "BaseName", "renamed");
    bridge.setAttribute(0, "CodeTemplate", "t.cgt");
    bridge.setAttribute(0, "OutputDirectory", "out");
    bridge.setAttribute(0, "DefinedMacro", "MODEL_H_");
    bridge.setAttribute(0, "Group", "G1");
    bridge.setAttribute(0, "Group", "G2");
    bridge.setAttribute(0, "SystemsInFile", "s1");
    bridge.setAttribute(0, "SystemsInFile", "s1");
    bridge.setAttribute(0, "SystemsInFile", "s2");
    bridge.setAttribute(0, "RequiredIncludes", "<stdio.h>");
    bridge.setAttribute(0, "RequiredIncludes", "rt.h");
    bridge.setAttribute(0, "UtilityIncludes", "util.h");
    bridge.setAttribute(0, "Shared", true);
    bridge.setAttribute(0, "Filter", true);

    std::ostringstream got;
    for (const char* n : {"Name", "BaseName", "NameWithoutExtension", "Type", "Creator", "CodeTemplate",
                          "OutputDirectory", "Group", "DefinedMacro"})
        got << n << "=" << bridge.getStringAttribute(0, n) << ";";
    for (const char* n : {"SystemsInFile", "RequiredIncludes", "UtilityIncludes"}) {
        got << n << "=";
        for (const auto& s : bridge.getStringArrayAttribute(0, n)) got << s << ",";
        got << ";";
    }
    for (const char* n : {"Filter", "IsEmpty", "WrittenToDisk", "Indent", "Shared", "SharedType",
                          "DeferredIncludeCoderTypes"})
        got << n << "=" << bridge.getBooleanAttribute(0, n) << ";";
    EXPECT_EQ("Name=src/model.c;BaseName=renamed;NameWithoutExtension=src/model;Type=source;Creator=ert;"
              "CodeTemplate=t.cgt;OutputDirectory=out;Group=G1;DefinedMacro=MODEL_H_;"
              "SystemsInFile=s1,s2,;RequiredIncludes=<stdio.h>,rt.h,;UtilityIncludes=util.h,;"
              "Filter=1;IsEmpty=1;WrittenToDisk=0;Indent=0;Shared=1;SharedType=0;DeferredIncludeCoderTypes=0;",
              got.str());

    // "IsEmpty" can only be cleared.
    bridge.setAttribute(1, "IsEmpty", true);
    EXPECT_TRUE(bridge.getBooleanAttribute(1, "IsEmpty"));
    bridge.setAttribute(1, "IsEmpty", false);
    EXPECT_FALSE(bridge.getBooleanAttribute(1, "IsEmpty"));
    bridge.setAttribute(1, "IsEmpty", true);
    EXPECT_FALSE(generic.isEmpty());

    // Sections read as string attributes give their current text.
    bridge.addSectionContent(0, "Includes", text("#include \"model.h\"\n"));
    EXPECT_STREQ("\n#include <stdio.h>\n\n#include \"rt.h\"\n#include \"model.h\"\n\n#include \"util.h\"\n",
                 bridge.getStringAttribute(0, "Includes"));
}

TEST_F(FileRepScrivBridgeTest, RejectsBadIndicesNamesAndNullArgumentsWithoutChangingAnything) {
    FILE* out = std::tmpfile();
    struct Row {
        std::function<void()> call;
        const char* expected;
    } rows[] = {
        {[&] { bridge.getBooleanAttribute(3, "Filter"); }, "VelCG:FileRepScrivBridge:InvalidFileIndex|3|3"},
        {[&] { bridge.setAttribute(-1, "Type", "x"); }, "VelCG:FileRepScrivBridge:InvalidFileIndex|-1|3"},
        {[&] { bridge.writeSection(7, "Includes", out); }, "VelCG:FileRepScrivBridge:InvalidFileIndex|7|3"},
        {[&] { bridge.getBooleanAttribute(0, "Name"); }, "VelCG:FileRepScrivBridge:UnknownAttribute|Name|boolean"},
        {[&] { bridge.getStringAttribute(0, "SystemsInFile"); },
         "VelCG:FileRepScrivBridge:UnknownAttribute|SystemsInFile|readable string"},
        {[&] { bridge.setAttribute(0, "Name", "x"); },
         "VelCG:FileRepScrivBridge:UnknownAttribute|Name|settable string"},
        {[&] { bridge.setAttribute(0, "Filtered", true); },
         "VelCG:FileRepScrivBridge:UnknownAttribute|Filtered|boolean"},
        {[&] { bridge.getStringArrayAttribute(0, "Type"); },
         "VelCG:FileRepScrivBridge:UnknownAttribute|Type|string list"},
        {[&] { bridge.setAttribute(0, "Type", static_cast<const char*>(nullptr)); },
         "VelCG:FileRepScrivBridge:NullArgument|attribute value"},
        {[&] { bridge.writeSection(0, "Types", out); }, "VelCG:FileRepScrivBridge:UnknownSection|Types"},
        {[&] { bridge.writeSection(0, "Includes", nullptr); }, "VelCG:FileRepScrivBridge:NullArgument|output stream"},
        {[&] { bridge.addSectionContent(0, "", text("x")); }, "VelCG:FileRepScrivBridge:UnknownSection|"},
        {[&] { bridge.addSectionContent(0, "Defines", nullptr); },
         "VelCG:FileRepScrivBridge:NullArgument|section fragment"},
        {[&] { bridge.appendMissingTokens(0, "Types"); }, "VelCG:FileRepScrivBridge:UnknownSection|Types"},
        {[&] { bridge.addCustomSection(0, "", "Mine"); }, "Brisk:codeGen:CustomContentInvalidBuiltin|Mine|"},
        {[&] { bridge.addCustomSection(0, "typedefs", "Mine"); },
         "Brisk:codeGen:CustomContentInvalidBuiltin|Mine|typedefs"},
        {[&] { bridge.addCustomSection(5, "Typedefs", "Mine"); }, "VelCG:FileRepScrivBridge:InvalidFileIndex|5|3"},
    };
    for (const Row& r : rows) EXPECT_EQ(r.expected, diagnosticOf(r.call));
    EXPECT_EQ(0L, std::ftell(out));
    std::fclose(out);
    EXPECT_TRUE(module.isEmpty());
    EXPECT_EQ("", module.getType());
    EXPECT_FALSE(module.getCustomContent().isCustomSection("Mine"));
}

TEST_F(FileRepScrivBridgeTest, TypesDeclaresTypedefsCustomSectionsAndReassociationIsDiagnosed) {
    bridge.addCustomSection(2, "Types", "MyTypes");
    bridge.addCustomSection(2, "Typedefs", "MyTypes"); // same kind: silent
    EXPECT_EQ("Brisk:codeGen:CustomContentPreviousAssociation|MyTypes|Defines|Typedefs",
              diagnosticOf([&] { bridge.addCustomSection(2, "Defines", "MyTypes"); }));
    bridge.addCustomSection(2, "Documentation", "Notes");
    types.getCustomContent().addContentToSection("MyTypes", "typedef int T;\n");
    types.getCustomContent().addContentToSection("Notes", "never appended\n");
    bridge.appendMissingTokens(2, "Documentation");
    bridge.appendMissingTokens(2, "Typedefs");
    bridge.appendMissingTokens(2, "Typedefs");
    EXPECT_STREQ("typedef int T;\n", bridge.getStringAttribute(2, "Typedefs"));
    EXPECT_STREQ("", bridge.getStringAttribute(2, "Documentation"));
}

// A repository with the three kinds of file, driven the way a template does
// it, written to real files on disk section by section in kind order.
TEST_F(FileRepScrivBridgeTest, EndToEndWritesEveryFileByteForByte) {
    namespace fs = boost::filesystem;
    const fs::path dir = fs::temp_directory_path() / fs::unique_path("velcg-files-%%%%-%%%%");
    fs::create_directories(dir);

    // Attributes.
    bridge.setAttribute(0, "Type", "source");
    bridge.setAttribute(0, "SystemsInFile", "root");
    bridge.setAttribute(0, "RequiredIncludes", "model.h");
    bridge.setAttribute(0, "UtilityIncludes", "<math.h>");
    bridge.setAttribute(0, "UtilityIncludes", "rt_util.h");
    bridge.setAttribute(1, "Group", "docs");
    bridge.setAttribute(2, "RequiredIncludes", "<stdint.h>");

    // Custom sections, under "Types" too.
    bridge.addCustomSection(0, "Declarations", "ExtraDecls");
    bridge.addCustomSection(0, "Declarations", "PlacedDecls");
    bridge.addCustomSection(0, "Banner", "Copyright"); // a module file has no banner
    bridge.addCustomSection(1, "UserTop", "Top");
    bridge.addCustomSection(2, "Types", "MyTypes");
    module.getCustomContent().addContentToSection("ExtraDecls", "static int extra;\n");
    module.getCustomContent().addContentToSection("PlacedDecls", "static int placed;\n");
    module.getCustomContent().setCustomTokenInUse("PlacedDecls");
    module.getCustomContent().addContentToSection("Copyright", "/* (c) */\n");
    generic.getCustomContent().addContentToSection("Top", "top text\n");
    types.getCustomContent().addContentToSection("MyTypes", "typedef double real_T;\n");

    // Content.
    bridge.addSectionContent(0, "Includes", text("#include \"model_types.h\"\n"));
    bridge.addSectionContent(0, "Declarations", text("int counter;\n"));
    dynamic_cast<FunctionsSection&>(module.getFunctionsSection()).addFunction("step", "void step(void)\r\n{\r\n}\r\n");
    bridge.addSectionContent(0, "Functions", text(std::string("/* bytes: \x01\xfe\t */\n")));
    bridge.addSectionContent(0, "Banner", text("dropped: no banner in a module file\n"));
    bridge.addSectionContent(1, "Banner", text("== notes ==\n"));
    bridge.addSectionContent(1, "UserBottom", text("bottom\n"));
    bridge.addSectionContent(2, "Typedefs", text("typedef int int_T;\n"));
    bridge.addSectionContent(2, "Defines", text("#define TYPES_H\n"));

    // Write each file in kind order through the bridge; the caller owns the stream.
    for (std::int32_t i = 0; i < 3; ++i) {
        for (int k = 0; k < kNumberOfSectionKinds; ++k) {
            std::string name = getScrivSectionNameFromEnum(static_cast<VelCGFileSectionKind>(k));
            if (bridge.isFileSectionAttribute(name)) bridge.appendMissingTokens(i, name);
        }
        std::FILE* out = std::fopen((dir / bridge.getStringAttribute(i, "BaseName")).string().c_str(), "wb");
        ASSERT_NE(nullptr, out);
        for (int k = 0; k < kNumberOfSectionKinds; ++k) {
            std::string name = getScrivSectionNameFromEnum(static_cast<VelCGFileSectionKind>(k));
            if (bridge.isFileSectionAttribute(name)) bridge.writeSection(i, name, out);
        }
        std::fclose(out);
        bridge.setAttribute(i, "WrittenToDisk", true);
    }

    auto bytesOf = [&](const char* baseName) {
        std::ifstream in((dir / baseName).string(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    EXPECT_EQ("\n#include \"model.h\"\n"
              "\n#include <math.h>\n"
              "#include \"model_types.h\"\n"
              "\n#include \"rt_util.h\"\n"
              "int counter;\n"
              "static int extra;\n"
              "void step(void)\r\n{\r\n}\r\n"
              "/* bytes: \x01\xfe\t */\n",
              bytesOf("model"));
    EXPECT_EQ("== notes ==\ntop text\nbottom\n", bytesOf("notes"));
    EXPECT_EQ("\n#include <stdint.h>\n#define TYPES_H\ntypedef int int_T;\ntypedef double real_T;\n",
              bytesOf("model_types"));
    EXPECT_TRUE(bridge.getBooleanAttribute(2, "WrittenToDisk"));
    // Appending the banner tokens of a module file consumed its banner custom
    // section into the empty section: the text is gone and cannot be placed.
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved|Copyright|end|Copyright",
              diagnosticOf([&] { module.getCustomContent().getCustomSectionContent("Copyright", "end"); }));

    fs::remove_all(dir);
}
