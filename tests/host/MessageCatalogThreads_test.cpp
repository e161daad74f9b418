// Messages formatted on worker threads while the host's thread replaces the
// catalog they come from, as happens when a library registers its catalog
// while a background pass raises diagnostics.
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "StartLatch.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/diag/MessageCatalog.hpp"

namespace {

using vel::diag::Diagnostic;
using vel::diag::MessageCatalog;

TEST(MessageCatalogThreads, ReplacingATemplateNeverTearsAMessageBeingFormatted) {
    // Two templates of different lengths, so that a torn read shows.
    const std::string shortText = "short {1}";
    const std::string longText = "a much longer template that has to be reallocated: {1}";
    MessageCatalog::instance().addCatalog("Test:threads", {{"Key", shortText}});
    constexpr int kThreads = 3, kReads = 2000;
    testing_support::StartLatch start(kThreads + 1);
    std::vector<std::thread> readers;
    std::vector<int> torn(kThreads, 0);
    for (int t = 0; t < kThreads; ++t)
        readers.emplace_back([&, t] {
            start.arriveAndWait();
            for (int i = 0; i < kReads; ++i) {
                std::string m = Diagnostic::fromCatalog("Test:threads:Key", {"x"}).message();
                if (m != "short x" && m != "a much longer template that has to be reallocated: x") ++torn[t];
            }
        });
    start.arriveAndWait();
    for (int i = 0; i < 500; ++i)
        MessageCatalog::instance().addCatalog("Test:threads", {{"Key", i % 2 ? shortText : longText}});
    for (auto& r : readers) r.join();
    EXPECT_EQ(std::vector<int>(kThreads, 0), torn);
}

} // namespace
