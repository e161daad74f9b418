// References to one data interface released on several threads at once, as
// the background serialization and the host's thread do.
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "CG/DataInterface.hpp"
#include "StartLatch.hpp"

namespace {

TEST(DataInterfaceThreads, LastReleaseOnAnyThreadDestroysOnce) {
    long before = CG::DataInterface::liveCount();
    auto* di = CG::DataInterface::create({"x", "Variable", "", "double", ""});
    constexpr int kThreads = 4, kRefs = 2000;
    for (int i = 0; i < kThreads * kRefs; ++i) di->addRef();
    testing_support::StartLatch start(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&start, di] {
            start.arriveAndWait();
            for (int i = 0; i < kRefs; ++i) di->release();
        });
    for (auto& t : threads) t.join();
    EXPECT_EQ(1, di->getRefCount());
    di->release();
    EXPECT_EQ(before, CG::DataInterface::liveCount());
}

} // namespace
