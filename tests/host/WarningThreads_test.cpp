// Warnings raised on several threads at once: each thread's collector sees
// exactly its own, and threads without a collector reach the shared sink.
#include <gtest/gtest.h>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "StartLatch.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace {

using vel::diag::Diagnostic;

TEST(WarningThreads, CollectorsArePerThreadAndTheSinkTakesTheRest) {
    constexpr int kThreads = 4, kWarnings = 500;
    std::mutex mutex;
    std::vector<std::string> sunk;
    vel::diag::ScopedWarningSink sink([&](const Diagnostic& d) {
        std::lock_guard<std::mutex> lock(mutex);
        sunk.push_back(d.arguments().at(0));
    });
    testing_support::StartLatch start(kThreads);
    std::vector<std::thread> threads;
    std::vector<std::vector<Diagnostic>> collected(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            // Even threads collect; odd ones go to the sink.
            std::optional<vel::diag::WarningCollector> collector;
            if (t % 2 == 0) collector.emplace();
            start.arriveAndWait();
            for (int i = 0; i < kWarnings; ++i) vel::diag::warn("Test:threads:Warn", {std::to_string(t)});
            if (collector) collected[t] = collector->warnings();
        });
    for (auto& t : threads) t.join();
    for (int t = 0; t < kThreads; t += 2) {
        ASSERT_EQ(static_cast<std::size_t>(kWarnings), collected[t].size());
        for (const Diagnostic& d : collected[t]) EXPECT_EQ(std::to_string(t), d.arguments().at(0));
    }
    ASSERT_EQ(static_cast<std::size_t>(kWarnings * kThreads / 2), sunk.size());
    for (const std::string& from : sunk) EXPECT_EQ(1, std::stoi(from) % 2);
}

} // namespace
