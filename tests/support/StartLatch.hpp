#pragma once

#include <atomic>
#include <thread>

namespace testing_support {

// Lets a fixed number of threads start together, so that what they do
// really overlaps instead of running one after another as threads happen to
// be scheduled (C++17 has no std::latch).
class StartLatch {
public:
    explicit StartLatch(int threads) : waiting_(threads) {}
    StartLatch(const StartLatch&) = delete;
    StartLatch& operator=(const StartLatch&) = delete;

    // Counts the calling thread in, then waits until every thread has.
    void arriveAndWait() {
        waiting_.fetch_sub(1, std::memory_order_acq_rel);
        while (waiting_.load(std::memory_order_acquire) > 0) std::this_thread::yield();
    }

private:
    std::atomic<int> waiting_;
};

} // namespace testing_support
