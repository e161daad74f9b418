#include "vel/diag/MessageCatalog.hpp"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace {

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

TEST(MessageCatalog, LookupSplitsTheKeyAtTheLastColon) {
    MessageCatalog::instance().addCatalog("Test:lookup:deep", {{"Key", "deep"}});
    MessageCatalog::instance().addCatalog("Test:lookup", {{"Key", "shallow"}});
    struct Row {
        const char* identifier;
        std::optional<std::string> text;
    } rows[] = {
        {"Test:lookup:deep:Key", "deep"},
        {"Test:lookup:Key", "shallow"},
        {"Test:lookup:Other", std::nullopt},
        {"Test:nowhere:Key", std::nullopt},
        {"Key", std::nullopt},
    };
    for (const auto& r : rows)
        EXPECT_EQ(r.text, MessageCatalog::instance().lookup(r.identifier)) << r.identifier;
}

TEST(MessageCatalog, ATextHandedOutKeepsItsValueWhenTheCatalogReplacesIt) {
    auto& catalog = MessageCatalog::instance();
    catalog.addCatalog("Test:replace", {{"Key", "old {1}"}, {"Kept", "kept"}});
    std::optional<std::string> before = catalog.lookup("Test:replace:Key");
    catalog.addCatalog("Test:replace", {{"Key", "a new and much longer text {1}"}});
    EXPECT_EQ("old {1}", before.value_or("(none)"));
    EXPECT_EQ("a new and much longer text {1}", catalog.lookup("Test:replace:Key").value_or("(none)"));
    EXPECT_EQ("kept", catalog.lookup("Test:replace:Kept").value_or("(none)"))
        << "keys not given keep their templates";
}

TEST(MessageCatalog, EveryCodeGenKeyHasATemplateUsingAllItsArguments) {
    struct Row {
        const char* key;
        int args;
    } rows[] = {{"CustomContentPreviousAssociation", 3},
                {"CustomContentSectionDoesNotExist", 2},
                {"CustomContentSectionAlreadyRetrieved", 3},
                {"CustomContentInvalidBuiltin", 2}};
    for (const auto& r : rows) {
        std::optional<std::string> text =
            MessageCatalog::instance().lookup(std::string("Brisk:codeGen:") + r.key);
        ASSERT_TRUE(text.has_value()) << r.key;
        for (int i = 1; i <= r.args; ++i)
            EXPECT_NE(std::string::npos, text->find("{" + std::to_string(i) + "}")) << r.key << " arg " << i;
    }
}

} // namespace
