#include "vel/diag/Diagnostic.hpp"

#include <gtest/gtest.h>

namespace {

using vel::diag::Diagnostic;
using vel::diag::MessageCatalog;

TEST(MessageCatalog, FormatPlacesArgumentsByNumber) {
    struct Row {
        const char* pattern;
        std::vector<std::string> args;
        const char* expected;
    } rows[] = {
        {"{2} before {1}", {"a", "b"}, "b before a"},
        {"{1}{1}", {"x"}, "xx"},
        {"missing {3}", {"a"}, "missing {3}"},
        {"{0} is not an argument", {"a"}, "{0} is not an argument"},
        {"{{1}} is literal", {"a"}, "{1}} is literal"},
        {"unclosed {1", {"a"}, "unclosed {1"},
        {"{x}", {"a"}, "{x}"},
        {"{10}", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "ten"}, "ten"},
        {"arg with {2} braces", {"{1}", "{1}"}, "arg with {1} braces"},
    };
    for (const auto& r : rows) EXPECT_EQ(r.expected, MessageCatalog::format(r.pattern, r.args)) << r.pattern;
}

TEST(Diagnostic, CatalogMessagesKeepIdentifierAndArgumentsReadable) {
    try {
        vel::diag::throwError("Brisk:codeGen:CustomContentSectionAlreadyRetrieved",
                              {"Decls", "model.c", "Decls"});
        FAIL() << "no exception";
    } catch (const std::exception& e) {
        auto* d = dynamic_cast<const vel::diag::Exception*>(&e);
        ASSERT_NE(nullptr, d);
        EXPECT_EQ("Brisk:codeGen:CustomContentSectionAlreadyRetrieved", d->identifier());
        EXPECT_EQ((std::vector<std::string>{"Decls", "model.c", "Decls"}), d->arguments());
        std::string what = e.what();
        EXPECT_EQ(0u, what.find("Brisk:codeGen:CustomContentSectionAlreadyRetrieved: "));
        EXPECT_NE(std::string::npos, what.find("'Decls'"));
        EXPECT_NE(std::string::npos, what.find("model.c"));
    }
}

TEST(Diagnostic, EveryCodeGenKeyHasOwnWordingUsingAllItsArguments) {
    struct Row {
        const char* key;
        int args;
    } rows[] = {{"CustomContentPreviousAssociation", 3},
                {"CustomContentSectionDoesNotExist", 2},
                {"CustomContentSectionAlreadyRetrieved", 3},
                {"CustomContentInvalidBuiltin", 2}};
    for (const auto& r : rows) {
        std::string id = std::string("Brisk:codeGen:") + r.key;
        const std::string* text = MessageCatalog::instance().lookup(id);
        ASSERT_NE(nullptr, text) << r.key;
        for (int i = 1; i <= r.args; ++i)
            EXPECT_NE(std::string::npos, text->find("{" + std::to_string(i) + "}")) << r.key << " arg " << i;
    }
}

TEST(Diagnostic, TextAndUnknownIdentifiersStillProduceMessages) {
    Diagnostic t = Diagnostic::withText("VelCG:Type::InvalidCGType", "VelType has invalid CGType");
    EXPECT_EQ("VelType has invalid CGType", t.message());
    EXPECT_TRUE(t.arguments().empty());
    vel::diag::Exception e(t);
    EXPECT_STREQ("VelCG:Type::InvalidCGType: VelType has invalid CGType", e.what());

    Diagnostic u = Diagnostic::fromCatalog("Nowhere:Nothing", {"a", "b"});
    EXPECT_EQ("Message Nowhere:Nothing (a, b)", u.message());

    MessageCatalog::instance().addCatalog("Test:cat", {{"Key", "value {1}"}});
    EXPECT_EQ("value 5", Diagnostic::fromCatalog("Test:cat:Key", {"5"}).message());
    MessageCatalog::instance().addCatalog("Test:cat", {{"Key", "changed {1}"}});
    EXPECT_EQ("changed 5", Diagnostic::fromCatalog("Test:cat:Key", {"5"}).message());
}

} // namespace
