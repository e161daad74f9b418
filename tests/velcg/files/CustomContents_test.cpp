#include <gtest/gtest.h>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/CustomSection.hpp"
#include "velcg/FileSection.hpp"

using namespace VelCG;

namespace {
// Identifier and arguments of the diagnostic f raises, as one line.
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
} // namespace

TEST(CustomSection, TokenRequirementAndRetrieval) {
    CustomSection docs("Notes", DOCUMENTATION_SECTION);
    CustomSection decls("MyDecls", DECLARATIONS_SECTION);
    EXPECT_EQ("MyDecls_InUse", decls.getSectionToken());
    EXPECT_FALSE(docs.isRequired());
    EXPECT_TRUE(decls.isRequired());
    decls.addContent("int x;\n");
    decls.setIsRetrieved();
    auto copy = decls.clone();
    auto* copied = dynamic_cast<CustomSection*>(copy.get());
    ASSERT_NE(nullptr, copied);
    EXPECT_EQ("MyDecls", copied->getName());
    EXPECT_TRUE(copied->isRetrieved());
    EXPECT_EQ("int x;\n", copied->getContent());
}

TEST(CustomContents, DeclarationsAreUniqueByNameAndMisuseIsDiagnosed) {
    CustomContents cc("model.c");
    cc.addCustomSection("A", INCLUDES_SECTION);
    cc.addCustomSection("A", INCLUDES_SECTION);
    EXPECT_TRUE(cc.isCustomSection("A"));
    EXPECT_FALSE(cc.isCustomSection("a"));

    EXPECT_EQ("Brisk:codeGen:CustomContentPreviousAssociation|A|Functions|Includes",
              diagnosticOf([&] { cc.addCustomSection("A", FUNCTIONS_SECTION); }));
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionDoesNotExist|model.c|B",
              diagnosticOf([&] { cc.addContentToSection("B", "x"); }));
    EXPECT_EQ("VelCG:CustomContents:NullContent|model.c|A",
              diagnosticOf([&] { cc.addContentToSection("A", static_cast<const char*>(nullptr)); }));

    // An undeclared name has no content and raises nothing.
    EXPECT_EQ("", cc.getCustomSectionContent("B", "ctx"));
    cc.addContentToSection("A", std::string("one\0two", 7));
    EXPECT_EQ("one", cc.getCustomSectionContent("A", "first"));
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved|A|template.tlc|A",
              diagnosticOf([&] { cc.getCustomSectionContent("A", "template.tlc"); }));

    // The failed re-association left the section tied to Includes, where
    // it was already retrieved: nothing is appended.
    FileSection includes;
    cc.appendMissingTokens(includes, INCLUDES_SECTION);
    EXPECT_TRUE(includes.isEmpty());
}

TEST(CustomContents, AppendsUnplacedRequiredSectionsOnceInDeclarationOrder) {
    CustomContents cc("model.c");
    cc.addCustomSection("Z", DEFINES_SECTION);
    cc.addCustomSection("Placed", DEFINES_SECTION);
    cc.addCustomSection("Empty", DEFINES_SECTION);
    cc.addCustomSection("A", DEFINES_SECTION);
    cc.addCustomSection("Taken", DEFINES_SECTION);
    cc.addCustomSection("Docs", DOCUMENTATION_SECTION);
    cc.addCustomSection("Other", TYPEDEFS_SECTION);
    cc.addContentToSection("Z", "z\n");
    cc.addContentToSection("Placed", "lost\n");
    cc.addContentToSection("A", "a\n");
    cc.addContentToSection("Taken", "taken\n");
    cc.addContentToSection("Docs", "docs\n");
    cc.addContentToSection("Other", "other\n");
    cc.setCustomTokenInUse("Placed");
    cc.setCustomTokenInUse("Placed");
    EXPECT_EQ("taken\n", cc.getCustomSectionContent("Taken", "t"));

    FileSection defines;
    defines.addContent("#define D\n");
    cc.appendMissingTokens(defines, DEFINES_SECTION);
    cc.appendMissingTokens(defines, DEFINES_SECTION);
    EXPECT_EQ("#define D\nz\na\n", defines.getContent());
    // The empty section was appended too (an empty fragment) and is now retrieved.
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved|Empty|x|Empty",
              diagnosticOf([&] { cc.getCustomSectionContent("Empty", "x"); }));

    FileSection docs;
    cc.appendMissingTokens(docs, DOCUMENTATION_SECTION);
    cc.appendMissingTokens(docs, FUNCTIONS_SECTION);
    EXPECT_TRUE(docs.isEmpty());

    // A copy shares the sections: what one retrieves, the other sees retrieved.
    CustomContents copy(cc);
    FileSection typedefs;
    copy.appendMissingTokens(typedefs, TYPEDEFS_SECTION);
    EXPECT_EQ("other\n", typedefs.getContent());
    FileSection again;
    cc.appendMissingTokens(again, TYPEDEFS_SECTION);
    EXPECT_TRUE(again.isEmpty());
}
