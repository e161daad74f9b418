// Platform pieces that the background serialization thread uses while the
// host's thread goes on: feature reads and reference counts.
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "CG/DataInterface.hpp"
#include "vel/feature/Feature.hpp"

namespace {

TEST(ThreadedFeature, ConcurrentReadsAndWritesCountEveryRead) {
    vel::feature::Feature f("TestFeatureThreads", "threads", "Test[Unit]", 1);
    constexpr int kThreads = 4, kReads = 5000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kReads; ++i) {
                int v = f.value();
                ASSERT_TRUE(v == 1 || v == 2);
            }
        });
    for (int i = 0; i < 100; ++i) f.set(i % 2 + 1);
    for (auto& t : threads) t.join();
    EXPECT_EQ(static_cast<std::uint64_t>(kThreads) * kReads, f.readCount());
}

TEST(ThreadedRefCount, LastReleaseOnAnyThreadDestroysOnce) {
    long before = CG::DataInterface::liveCount();
    auto* di = CG::DataInterface::create({"x", "Variable", "", "real_T", ""});
    constexpr int kThreads = 4, kRefs = 2000;
    for (int i = 0; i < kThreads * kRefs; ++i) di->addRef();
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([di] {
            for (int i = 0; i < kRefs; ++i) di->release();
        });
    for (auto& t : threads) t.join();
    EXPECT_EQ(1, di->getRefCount());
    di->release();
    EXPECT_EQ(before, CG::DataInterface::liveCount());
}

} // namespace
