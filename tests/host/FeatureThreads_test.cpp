// A feature read by worker threads while the host's thread sets it, as the
// background serialization does.
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "StartLatch.hpp"
#include "vel/feature/Feature.hpp"

namespace {

TEST(FeatureThreads, ConcurrentReadsAndWritesCountEveryRead) {
    vel::feature::Feature f("TestFeatureThreads", "threads", "Test[Unit]", 1);
    constexpr int kThreads = 4, kReads = 5000;
    testing_support::StartLatch start(kThreads + 1);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            start.arriveAndWait();
            for (int i = 0; i < kReads; ++i) {
                int v = f.value();
                ASSERT_TRUE(v == 1 || v == 2);
            }
        });
    start.arriveAndWait();
    for (int i = 0; i < 100; ++i) f.set(i % 2 + 1);
    for (auto& t : threads) t.join();
    EXPECT_EQ(static_cast<std::uint64_t>(kThreads) * kReads, f.readCount());
}

} // namespace
