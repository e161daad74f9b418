#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "vel/diag/Diagnostic.hpp"

namespace {

using vel::diag::Diagnostic;
using vel::diag::MessageCatalog;
using vel::diag::ScopedWarningSink;
using vel::diag::WarningCollector;

std::vector<std::string> identifiersOf(const std::vector<Diagnostic>& warnings) {
    std::vector<std::string> ids;
    for (const Diagnostic& w : warnings) ids.push_back(w.identifier());
    return ids;
}

TEST(Warning, CollectorsRecordCatalogWarningsInOrderAndNest) {
    MessageCatalog::instance().addCatalog("Test:warn", {{"Dropped", "{1} byte(s) of '{2}' dropped."}});
    WarningCollector outer;
    vel::diag::warn("Test:warn:Dropped", {"3", "abc"});
    {
        WarningCollector inner;
        vel::diag::warn("Test:warn:Other", {"x"});
        EXPECT_EQ((std::vector<std::string>{"Test:warn:Other"}), identifiersOf(inner.warnings()));
    }
    vel::diag::warn("Test:warn:Dropped", {"1", "z"});
    ASSERT_EQ(3u, outer.warnings().size());
    EXPECT_EQ("3 byte(s) of 'abc' dropped.", outer.warnings()[0].message());
    EXPECT_EQ((std::vector<std::string>{"3", "abc"}), outer.warnings()[0].arguments());
    EXPECT_EQ("Test:warn:Other", outer.warnings()[1].identifier());
    EXPECT_EQ("1 byte(s) of 'z' dropped.", outer.warnings()[2].message());
    outer.clear();
    EXPECT_TRUE(outer.warnings().empty());
}

TEST(Warning, TheSinkSeesWarningsOnlyWhileNoCollectorIsAliveAndIsRestored) {
    std::vector<std::string> first, second;
    vel::diag::warn("Test:warn:Nobody", {}); // no sink, no collector: discarded
    {
        ScopedWarningSink a([&](const Diagnostic& d) { first.push_back(d.identifier()); });
        vel::diag::warn("Test:warn:A", {});
        {
            ScopedWarningSink b([&](const Diagnostic& d) { second.push_back(d.identifier()); });
            vel::diag::warn("Test:warn:B", {});
            WarningCollector collector;
            vel::diag::warn("Test:warn:Collected", {});
            EXPECT_EQ(1u, collector.warnings().size());
        }
        vel::diag::warn("Test:warn:C", {});
    }
    vel::diag::warn("Test:warn:After", {});
    EXPECT_EQ((std::vector<std::string>{"Test:warn:A", "Test:warn:C"}), first);
    EXPECT_EQ((std::vector<std::string>{"Test:warn:B"}), second);
}

TEST(Warning, AThrowingSinkDoesNotReachTheCaller) {
    ScopedWarningSink sink([](const Diagnostic&) { throw std::runtime_error("sink failed"); });
    EXPECT_NO_THROW(vel::diag::warn("Test:warn:Thrown", {"x"}));
}

} // namespace
