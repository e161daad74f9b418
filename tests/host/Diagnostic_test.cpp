#include "vel/diag/Diagnostic.hpp"

#include <gtest/gtest.h>

namespace {

using vel::diag::Diagnostic;
using vel::diag::MessageCatalog;

TEST(Diagnostic, ATextDiagnosticCarriesTheTextAndNoArguments) {
    Diagnostic t = Diagnostic::withText("VelCG:Type::InvalidCGType", "VelType has invalid CGType");
    EXPECT_EQ("VelType has invalid CGType", t.message());
    EXPECT_TRUE(t.arguments().empty());
    EXPECT_STREQ("VelCG:Type::InvalidCGType: VelType has invalid CGType", vel::diag::Exception(t).what());
}

TEST(Diagnostic, AnUnknownIdentifierStillSaysEveryArgument) {
    EXPECT_EQ("Message Nowhere:Nothing (a, b)",
              Diagnostic::fromCatalog("Nowhere:Nothing", {"a", "b"}).message());
    EXPECT_EQ("Message Nowhere:Nothing", Diagnostic::fromCatalog("Nowhere:Nothing", {}).message());
}

TEST(Diagnostic, MessagesFollowTheCatalogAsItIsWhenCreated) {
    MessageCatalog::instance().addCatalog("Test:cat", {{"Key", "value {1}"}});
    Diagnostic first = Diagnostic::fromCatalog("Test:cat:Key", {"5"});
    MessageCatalog::instance().addCatalog("Test:cat", {{"Key", "changed {1}"}});
    EXPECT_EQ("value 5", first.message());
    EXPECT_EQ("changed 5", Diagnostic::fromCatalog("Test:cat:Key", {"5"}).message());
}

} // namespace
