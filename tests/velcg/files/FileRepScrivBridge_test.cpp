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
#include "ExpectedFile.hpp"
#include "TempDir.hpp"
#include "files/FileTesting.hpp"
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

// Sections read as string attributes give their text (test_bridge.py).
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
}

// Every refused call says what is wrong and, for a name, which names it
// could have meant (FileRepScrivBridge_refusals.txt, with the warnings that
// come before), and changes nothing: no byte written, no attribute set, no
// custom section declared.
TEST_F(FileRepScrivBridgeTest, RefusalsSayWhatIsWrongAndChangeNothing) {
    FILE* out = std::tmpfile();
#define VELCG_CALL(expression)           \
    {                                    \
#expression, [&] { expression; } \
    }
    const std::pair<const char*, std::function<void()>> calls[] = {
        VELCG_CALL(bridge.getBooleanAttribute(3, "Filter")),
        VELCG_CALL(bridge.setAttribute(-1, "Type", "x")),
        VELCG_CALL(bridge.writeSection(7, "Includes", out)),
        VELCG_CALL(bridge.addCustomSection(5, "Typedefs", "Mine")),
        VELCG_CALL(bridge.setAttribute(0, "Name", "x")),
        VELCG_CALL(bridge.setAttribute(0, "Includes", "x")),
        VELCG_CALL(bridge.setAttribute(0, "Type", static_cast<const char*>(nullptr))),
        VELCG_CALL(bridge.writeSection(0, "Includes", nullptr)),
        VELCG_CALL(bridge.addSectionContent(0, "Defines", nullptr)),
        VELCG_CALL(bridge.addCustomSection(0, "", "Mine")),
        VELCG_CALL(bridge.addCustomSection(0, "typedefs", "Mine")),
        VELCG_CALL(bridge.addCustomSection(0, "Typdefs", "Mine")),
        VELCG_CALL(bridge.setAttribute(0, "Creater", "me")),
        VELCG_CALL(bridge.getBooleanAttribute(0, "Filtered")),
        VELCG_CALL(bridge.getStringAttribute(0, "nAME")),
        VELCG_CALL(bridge.getStringArrayAttribute(0, "Files")),
        VELCG_CALL(bridge.setAttribute(0, "Functions", "x")),
        VELCG_CALL(bridge.setAttribute(0, "IsEmpty", "false")),
        VELCG_CALL(bridge.setAttribute(0, "SystemsInFile", true)),
        VELCG_CALL(bridge.getBooleanAttribute(0, "Includes")),
        VELCG_CALL(bridge.getStringAttribute(0, "SystemsInFile")),
        VELCG_CALL(bridge.addSectionContent(0, "Fucntions", text("x"))),
        VELCG_CALL(bridge.writeSection(0, "Types", out)),
        VELCG_CALL(bridge.appendMissingTokens(0, "Define")),
    };
#undef VELCG_CALL
    std::string rendered;
    vel::diag::WarningCollector warnings;
    for (const auto& [what, call] : calls) {
        warnings.clear();
        rendered += std::string(what) + "\n";
        const std::string raised = testing_support::diagnosticTextOf(call);
        for (const vel::diag::Diagnostic& w : warnings.warnings())
            rendered += "  warning " + w.identifier() + ": " + w.message() + "\n";
        rendered += "  " + raised + "\n";
    }
    EXPECT_EQ(0L, std::ftell(out));
    std::fclose(out);
    EXPECT_TRUE(module.isEmpty());
    EXPECT_EQ("", module.getType());
    EXPECT_FALSE(module.getCustomContent().isCustomSection("Mine"));
    EXPECT_MATCHES_FILE(rendered, __FILE__, "FileRepScrivBridge_refusals.txt");
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
