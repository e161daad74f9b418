#include "velcg/CustomContents.hpp"

#include <gtest/gtest.h>

#include "DiagnosticTesting.hpp"
#include "files/FileTesting.hpp"
#include "velcg/CustomSection.hpp"
#include "velcg/FileSection.hpp"

using namespace VelCG;
using testing_support::diagnosticWithArgumentsOf;

TEST(CustomSection, CloneKeepsNameKindStateAndContent) {
    CustomSection decls("MyDecls", DECLARATIONS_SECTION);
    decls.addContent("int x;\n");
    decls.setIsRetrieved();
    auto copy = decls.clone();
    auto* copied = dynamic_cast<CustomSection*>(copy.get());
    ASSERT_NE(nullptr, copied);
    EXPECT_EQ("MyDecls/16/1/1/int x;\n",
              copied->getName() + "/" + std::to_string(copied->getBuiltinSection()) + "/" +
                  std::to_string(copied->isRetrieved()) + "/" + std::to_string(copied->isRequired()) + "/" +
                  copied->getContent());
    EXPECT_EQ("MyDecls_InUse", decls.getSectionToken());
}

// Text after an embedded NUL is dropped with a warning; a refused addition
// warns about nothing.
TEST(CustomContents, DeclarationsAreUniqueByNameAndMisuseIsDiagnosed) {
    vel::diag::WarningCollector warnings;
    CustomContents cc("model.c");
    cc.addCustomSection("A", INCLUDES_SECTION);
    cc.addCustomSection("A", INCLUDES_SECTION);
    EXPECT_TRUE(cc.isCustomSection("A"));
    EXPECT_FALSE(cc.isCustomSection("a"));

    EXPECT_EQ("Brisk:codeGen:CustomContentPreviousAssociation(A, Functions, Includes)",
              diagnosticWithArgumentsOf([&] { cc.addCustomSection("A", FUNCTIONS_SECTION); }));
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionDoesNotExist(model.c, B)",
              diagnosticWithArgumentsOf([&] { cc.addContentToSection("B", std::string("x\0y", 3)); }));
    EXPECT_EQ("VelCG:CustomContents:NullContent(model.c, A)", diagnosticWithArgumentsOf([&] {
                  cc.addContentToSection("A", static_cast<const char*>(nullptr));
              }));
    EXPECT_FALSE(cc.isCustomSection("B"));

    // The failed re-association left A once, tied to Includes only.
    cc.addContentToSection("A", std::string("one\0two", 7));
    FileSection functions, includes;
    cc.appendMissingTokens(functions, FUNCTIONS_SECTION);
    cc.appendMissingTokens(includes, INCLUDES_SECTION);
    EXPECT_TRUE(functions.isEmpty());
    EXPECT_EQ("one", includes.getContent());

    // An undeclared name has no content and raises nothing; a declared one is taken out once.
    EXPECT_EQ("", cc.getCustomSectionContent("B", "ctx"));
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved(A, template.tmpl, A)",
              diagnosticWithArgumentsOf([&] { cc.getCustomSectionContent("A", "template.tmpl"); }));
    cc.addCustomSection("C", DEFINES_SECTION);
    cc.addContentToSection("C", "c");
    EXPECT_EQ("c", cc.getCustomSectionContent("C", "first"));
    cc.addContentToSection("C", "more"); // allowed after retrieval, stays retrieved
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved(C, second, C)",
              diagnosticWithArgumentsOf([&] { cc.getCustomSectionContent("C", "second"); }));
    EXPECT_EQ((std::vector<std::string>{"VelCG:CustomContents:TextAfterNul(model.c, A, 4)"}),
              files_testing::warningsOf(warnings));
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
    EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved(Empty, x, Empty)",
              diagnosticWithArgumentsOf([&] { cc.getCustomSectionContent("Empty", "x"); }));

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
