#include "velcg/FileRepScrivBridge.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "ChildProcess.hpp"
#include "DiagnosticTesting.hpp"
#include "TempDir.hpp"
#include "files/FileTesting.hpp"
#include "velcg/FunctionsSection.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

using namespace VelCG;
using testing_support::diagnosticWithArgumentsOf;

namespace {

boost::shared_ptr<FileSectionFragment> text(const std::string& s) { return files_testing::fragment(s); }

class FileRepScrivBridgeTest : public ::testing::Test {
public:
    VelCGFileRepository repo;
    FileRepScrivBridge& bridge = repo.scrivBridge();
    VelCGModuleFile& module = repo.createModuleSourceFile("src/model.c", {0});
    VelCGGenericFile& generic = repo.createGenericFile("notes.txt");
    VelCGDataTypesFile& types = repo.createDataTypesFile("model_types.h");
};

} // namespace

TEST_F(FileRepScrivBridgeTest, SetsAndReadsAttributesWithTheirQuirks) {
    const std::pair<const char*, const char*> settings[] = {
        {"Type", "source"},
        {"Creator", "velcg"},
        {"BaseName", "renamed"},
        {"CodeTemplate", "t.tmpl"},
        {"OutputDirectory", "out"},
        {"DefinedMacro", "MODEL_H_"},
        {"Group", "G1"},
        {"Group", "G2"},
        {"SystemsInFile", "s1"},
        {"SystemsInFile", "s1"},
        {"SystemsInFile", "s2"},
        {"RequiredIncludes", "<stdio.h>"},
        {"RequiredIncludes", "common.h"},
        {"UtilityIncludes", "util.h"},
    };
    for (const auto& [name, value] : settings) bridge.setAttribute(0, name, value);

    std::ostringstream got;
    for (const char* n : {"Name", "BaseName", "NameWithoutExtension", "Type", "Creator", "CodeTemplate",
                          "OutputDirectory", "Group", "DefinedMacro"})
        got << n << "=" << bridge.getStringAttribute(0, n) << ";";
    for (const char* n : {"SystemsInFile", "RequiredIncludes", "UtilityIncludes"}) {
        got << n << "=";
        for (const auto& s : bridge.getStringArrayAttribute(0, n)) got << s << ",";
        got << ";";
    }
    // Each boolean set in turn, all read back after each: a mis-wired one shows.
    const char* booleans[] = {
        "Filter", "IsEmpty", "WrittenToDisk", "Indent", "Shared", "SharedType", "DeferredIncludeCoderTypes"};
    for (const char* set : booleans) {
        bridge.setAttribute(0, set, true); // "IsEmpty" true does nothing
        for (const char* n : booleans) got << bridge.getBooleanAttribute(0, n);
        got << ";";
    }
    EXPECT_EQ(
        "Name=src/model.c;BaseName=renamed;NameWithoutExtension=src/model;Type=source;Creator=velcg;"
        "CodeTemplate=t.tmpl;OutputDirectory=out;Group=G1;DefinedMacro=MODEL_H_;"
        "SystemsInFile=s1,s2,;RequiredIncludes=<stdio.h>,common.h,;UtilityIncludes=util.h,;"
        "1100000;1100000;1110000;1111000;1111100;1111110;1111111;",
        got.str());

    // "IsEmpty" can only be cleared.
    bridge.setAttribute(1, "IsEmpty", false);
    EXPECT_FALSE(bridge.getBooleanAttribute(1, "IsEmpty"));
    bridge.setAttribute(1, "IsEmpty", true);
    EXPECT_FALSE(generic.isEmpty());

    // Sections read as string attributes give their current text.
    bridge.addSectionContent(0, "Includes", text("#include \"model.h\"\n"));
    EXPECT_STREQ(
        "\n#include <stdio.h>\n\n#include \"common.h\"\n#include \"model.h\"\n\n#include \"util.h\"\n",
        bridge.getStringAttribute(0, "Includes"));
}

TEST_F(FileRepScrivBridgeTest, RejectsBadIndicesNamesAndNullArgumentsWithoutChangingAnything) {
    FILE* out = std::tmpfile();
    const std::string index = "VelCG:FileRepScrivBridge:InvalidFileIndex",
                      attribute = "VelCG:FileRepScrivBridge:ReadOnlyAttribute",
                      section = "VelCG:FileRepScrivBridge:SectionNotSettable",
                      null = "VelCG:FileRepScrivBridge:NullArgument",
                      builtin = "Brisk:codeGen:CustomContentInvalidBuiltin";
    struct Row {
        std::function<void()> call;
        std::string expected;
    } rows[] = {
        {[&] { bridge.getBooleanAttribute(3, "Filter"); }, index + "(3, 3)"},
        {[&] { bridge.setAttribute(-1, "Type", "x"); }, index + "(-1, 3)"},
        {[&] { bridge.writeSection(7, "Includes", out); }, index + "(7, 3)"},
        {[&] { bridge.addCustomSection(5, "Typedefs", "Mine"); }, index + "(5, 3)"},
        {[&] { bridge.setAttribute(0, "Name", "x"); }, attribute + "(Name, getStringAttribute)"},
        {[&] { bridge.setAttribute(0, "Includes", "x"); }, section + "(Includes)"},
        {[&] { bridge.setAttribute(0, "Type", static_cast<const char*>(nullptr)); },
         null + "(attribute value)"},
        {[&] { bridge.writeSection(0, "Includes", nullptr); }, null + "(output stream)"},
        {[&] { bridge.addSectionContent(0, "Defines", nullptr); }, null + "(section fragment)"},
        {[&] { bridge.addCustomSection(0, "", "Mine"); }, builtin + "(Mine, )"},
        {[&] { bridge.addCustomSection(0, "typedefs", "Mine"); }, builtin + "(Mine, typedefs)"},
    };
    for (const Row& r : rows) EXPECT_EQ(r.expected, diagnosticWithArgumentsOf(r.call));
    EXPECT_EQ(0L, std::ftell(out));
    std::fclose(out);
    EXPECT_TRUE(module.isEmpty());
    EXPECT_EQ("", module.getType());
    EXPECT_FALSE(module.getCustomContent().isCustomSection("Mine"));
}

// What a template reads when it names an attribute or a section that the
// operation cannot use: which mistake it is, and what to use instead.
TEST_F(FileRepScrivBridgeTest, RefusedNamesSayWhatIsWrongAndWhatToUseInstead) {
    FILE* out = std::tmpfile();
    const std::string id = "VelCG:FileRepScrivBridge:",
                      sections =
                          "Banner, Includes, ModelTypesIncludes, ModelTypesDefines, Defines, "
                          "ModelTypesTypedefs, IntrinsicTypes, PrimitiveTypedefs, UserTop, Typedefs, "
                          "Enums, Definitions, ExternData, ExternFcns, FcnPrototypes, Declarations, "
                          "Functions, CompilerErrors, CompilerWarnings, Documentation";
    struct Row {
        std::function<void()> call;
        std::string expected;
    } rows[] = {
        {[&] { bridge.setAttribute(0, "Creater", "me"); },
         id + "UnknownAttribute: 'Creater' is not the name of a settable string file attribute (did you "
              "mean 'Creator'?). The settable string attributes are BaseName, Type, Creator, CodeTemplate, "
              "OutputDirectory, Group, DefinedMacro, SystemsInFile, RequiredIncludes and UtilityIncludes."},
        {[&] { bridge.getBooleanAttribute(0, "Filtered"); },
         id + "UnknownAttribute: 'Filtered' is not the name of a boolean file attribute (did you mean "
              "'Filter'?). The boolean attributes are Filter, IsEmpty, WrittenToDisk, Indent, Shared, "
              "SharedType and DeferredIncludeCoderTypes."},
        {[&] { bridge.getStringAttribute(0, "nAME"); },
         id + "UnknownAttribute: 'nAME' is not the name of a readable string file attribute (did you mean "
              "'Name'?). The readable string attributes are Name, BaseName, NameWithoutExtension, Type, "
              "Creator, CodeTemplate, OutputDirectory, Group, DefinedMacro and the section names."},
        {[&] { bridge.getStringArrayAttribute(0, "Files"); },
         id + "UnknownAttribute: 'Files' is not the name of a string list file attribute. The string list "
              "attributes are SystemsInFile, RequiredIncludes and UtilityIncludes."},
        {[&] { bridge.setAttribute(0, "Name", "x"); },
         id +
             "ReadOnlyAttribute: File attribute 'Name' is read-only: scripts read it with getStringAttribute "
             "and cannot set it."},
        {[&] { bridge.setAttribute(0, "Functions", "x"); },
         id + "SectionNotSettable: 'Functions' is a file section, not a settable attribute: add text to it "
              "with addSectionContent."},
        {[&] { bridge.setAttribute(0, "IsEmpty", "false"); },
         id + "WrongValueType: File attribute 'IsEmpty' takes true or false, not a string."},
        {[&] { bridge.setAttribute(0, "SystemsInFile", true); },
         id + "WrongValueType: File attribute 'SystemsInFile' takes a string, not true or false."},
        {[&] { bridge.getBooleanAttribute(0, "Includes"); },
         id + "WrongAttributeType: File attribute 'Includes' is a string, not a boolean: read it with "
              "getStringAttribute."},
        {[&] { bridge.getStringAttribute(0, "SystemsInFile"); },
         id + "WrongAttributeType: File attribute 'SystemsInFile' is a string list, not a string: read it "
              "with getStringArrayAttribute."},
        {[&] { bridge.addSectionContent(0, "Fucntions", text("x")); },
         id +
             "UnknownSection: 'Fucntions' is not the name of a file section (did you mean 'Functions'?). "
             "The section names are " +
             sections + " and UserBottom."},
        {[&] { bridge.writeSection(0, "Types", out); },
         id + "UnknownSection: 'Types' is not the name of a file section. The section names are " + sections +
             " and UserBottom."},
        {[&] { bridge.appendMissingTokens(0, "Define"); },
         id +
             "UnknownSection: 'Define' is not the name of a file section (did you mean 'Defines'?). The "
             "section names are " +
             sections + " and UserBottom."},
    };
    for (const Row& r : rows) {
        try {
            r.call();
            ADD_FAILURE() << "no diagnostic, expected " << r.expected;
        } catch (const vel::diag::Exception& e) {
            EXPECT_EQ(r.expected, e.what());
        }
    }
    EXPECT_EQ(0L, std::ftell(out));
    std::fclose(out);

    // The host's message for an unknown built-in section comes after a
    // warning that lists the names it could have been.
    vel::diag::WarningCollector warnings;
    EXPECT_EQ("Brisk:codeGen:CustomContentInvalidBuiltin(Mine, Typdefs)",
              diagnosticWithArgumentsOf([&] { bridge.addCustomSection(0, "Typdefs", "Mine"); }));
    ASSERT_EQ(1U, warnings.warnings().size());
    EXPECT_EQ(
        "'Typdefs' is not the name of a built-in file section (did you mean 'Typedefs'?). Custom "
        "sections can be declared for " +
            sections + ", UserBottom and Types.",
        warnings.warnings()[0].message());
}

TEST_F(FileRepScrivBridgeTest, CustomSectionKeepsTheKindItWasFirstDeclaredUnder) {
    bridge.addCustomSection(2, "Types", "MyTypes");
    bridge.addCustomSection(2, "Typedefs", "MyTypes"); // the same kind again: silent
    EXPECT_EQ("Brisk:codeGen:CustomContentPreviousAssociation(MyTypes, Defines, Typedefs)",
              diagnosticWithArgumentsOf([&] { bridge.addCustomSection(2, "Defines", "MyTypes"); }));
}

// Appending the banner tokens of a module file consumes its banner custom
// section into the empty section: the text is gone and cannot be placed.
TEST_F(FileRepScrivBridgeTest, BannerCustomSectionOfAFileWithoutBannerIsConsumedByTheTokens) {
    bridge.addCustomSection(0, "Banner", "Copyright");
    module.getCustomContent().addContentToSection("Copyright", "/* (c) */\n");
    bridge.appendMissingTokens(0, "Banner");
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved(Copyright, end, Copyright)",
              diagnosticWithArgumentsOf(
                  [&] { module.getCustomContent().getCustomSectionContent("Copyright", "end"); }));
}

#if !defined(_WIN32)
// A stream that refuses bytes: a full device, or a file at the size limit.
// The section write raises with the system's reason, whether the refusal
// comes at the write (a section larger than the stream's buffer) or only
// at the flush that follows it (a section the stream buffers); a file
// written before keeps its bytes.
TEST_F(FileRepScrivBridgeTest, RefusedWritesRaiseWithTheSystemsReasonAndKeepEarlierFiles) {
    testing_support::TempDir dir;
    const auto earlier = dir / "earlier.c";
    bridge.addSectionContent(0, "Declarations", text("int counter;\n"));
    std::FILE* out = std::fopen(earlier.c_str(), "wb");
    ASSERT_NE(nullptr, out);
    bridge.writeSection(0, "Declarations", out);
    ASSERT_EQ(0, std::fclose(out));

    const std::string small = "/* notes */\n", large(256 * 1024, 'x');
    const std::string full = std::strerror(ENOSPC), tooLarge = std::strerror(EFBIG);
    const std::string atFlush =
                          "VelCG:FileRepScrivBridge:WriteFailed: Cannot write section 'Documentation' of "
                          "file 'notes.txt': ",
                      atWrite =
                          "VelCG:FileSection:WriteFailed: Writing 262144 byte(s) of a file section to the "
                          "output stream failed: ";
    struct Row {
        const char* target;
        const std::string& content;
        testing_support::ChildSetup setup;
        std::string expected;
    } rows[] = {
        {"/dev/full", small, {}, atFlush + full + "."},
        {"/dev/full", large, {}, atWrite + full + "."},
        {"limited", small, testing_support::fileSizeLimit(4), atFlush + tooLarge + "."},
        {"limited", large, testing_support::fileSizeLimit(4096), atWrite + tooLarge + "."},
    };
    for (const Row& r : rows) {
        const std::string target = r.target[0] == '/' ? r.target : (dir / r.target).string();
        EXPECT_EQ(r.expected, testing_support::runInChild(
                                  r.setup,
                                  [&]() -> std::string {
                                      bridge.addSectionContent(1, "Documentation", text(r.content));
                                      std::FILE* stream = std::fopen(target.c_str(), "wb");
                                      if (!stream) return "cannot open " + target;
                                      try {
                                          bridge.writeSection(1, "Documentation", stream);
                                      } catch (const vel::diag::Exception& e) {
                                          return e.what();
                                      }
                                      return "no diagnostic";
                                  }))
            << r.target << ", " << r.content.size() << " bytes";
    }
    EXPECT_EQ("int counter;\n", testing_support::fileBytes(earlier));
}
#endif
