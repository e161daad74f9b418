// The background serialization passes of CGModel: starting a pass on its own
// thread, waiting for it, keeping its failure, and the count of passes
// running in the process that the object-system guard watches. The passes
// themselves (what they write) are in CGModel.cpp.

#include "BackgroundSerialization.hpp"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include <boost/thread/thread.hpp>

#include "velcg/CGModel.hpp"
#include "velcg/Features.hpp"

namespace VelCG {

namespace {

// The background passes running in this process, of any model. Never
// destroyed: a pass may still end while static objects are destroyed.
struct RunningPasses {
    std::mutex mutex;
    std::condition_variable finished;
    std::atomic<int> count{0};

    void end() {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            count.fetch_sub(1, std::memory_order_release);
        }
        finished.notify_all();
    }
};

RunningPasses& runningPasses() {
    static auto* passes = new RunningPasses();
    return *passes;
}

// True on the thread of a background pass.
thread_local bool onPassThread = false;

} // namespace

void CGModel::serializeModel(const std::wstring& directory) {
    // A mistyped switch is refused rather than read as the default.
    VELFEAT_VelCGDirectEmitSerialize.checkOverride();
    // Two passes never write at once, and no running thread is dropped.
    joinSerializationThread();
    if (VELFEAT_VelCGDirectEmitSerialize.value() >= 2) {
        serializeModelImpl(directory);
        return;
    }
    startSerializationThread(&CGModel::serializeModelImpl, directory);
}

void CGModel::serializeModelAfterScriv(const std::wstring& directory) {
    VELFEAT_VelCGDirectEmitSerialize.checkOverride();
    joinSerializationThread();
    // After a failed first pass the description this pass would add to is
    // missing, or stale from an earlier run.
    if (serializationError_) std::rethrow_exception(std::exchange(serializationError_, nullptr));
    if (VELFEAT_VelCGDirectEmitSerialize.value() >= 2) {
        serializeModelAfterScrivImpl(directory);
        return;
    }
    startSerializationThread(&CGModel::serializeModelAfterScrivImpl, directory);
}

void CGModel::finishSerialization() {
    joinSerializationThread();
    if (serializationError_) std::rethrow_exception(std::exchange(serializationError_, nullptr));
}

void CGModel::waitForSerialization() noexcept {
    try {
        joinSerializationThread();
    } catch (...) {
        // Joining fails only on the pass's own thread, when the pass itself
        // destroys the model; there is nothing to wait for then.
    }
}

void CGModel::joinSerializationThread() {
    if (!serializationThread_) return;
    serializationThread_->join();
    serializationThread_.reset();
}

void CGModel::startSerializationThread(void (CGModel::*pass)(const std::wstring&),
                                       const std::wstring& directory) {
    RunningPasses& passes = runningPasses();
    passes.count.fetch_add(1, std::memory_order_relaxed);
    try {
        serializationThread_ = std::make_unique<boost::thread>([this, pass, directory, &passes] {
            onPassThread = true;
            try {
                (this->*pass)(directory);
            } catch (...) {
                // Read only after the join, which orders it after this write.
                if (!serializationError_) serializationError_ = std::current_exception();
            }
            passes.end();
        });
    } catch (...) {
        passes.end();
        throw;
    }
}

void CGModel::waitForBackgroundSerialization() {
    RunningPasses& passes = runningPasses();
    if (onPassThread || passes.count.load(std::memory_order_acquire) == 0) return;
    std::unique_lock<std::mutex> lock(passes.mutex);
    passes.finished.wait(lock, [&] { return passes.count.load(std::memory_order_acquire) == 0; });
}

int CGModel::runningBackgroundPasses() { return runningPasses().count.load(std::memory_order_acquire); }

const std::atomic<int>& detail::runningBackgroundPassCount() { return runningPasses().count; }

} // namespace VelCG
