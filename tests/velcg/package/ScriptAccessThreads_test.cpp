// A script thread uses every member of every object it reaches while the
// owner destroys them, VELCG_THREAD_REPETITIONS times (default 100); a
// script reads every object beside a background serialization pass.

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include "EveryKindModel.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "korb/Binders.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/mi/Lifetime.hpp"
#include "velcg/Features.hpp"
#include "velcg/PlexoModule.hpp"

using vel::mi::HandleRef;

namespace {

// Sweeps everything reachable from the roots until an access fails. A
// reader only reads properties and calls the methods that only read.
class Script {
public:
    explicit Script(std::vector<HandleRef> roots, bool reader = false)
        : roots_(std::move(roots)), reader_(reader) {}

    void run() {
        try {
            for (;;) sweep();
        } catch (const vel::diag::Exception& e) {
            outcome_ = e.identifier();
        }
        ended_ = true;
    }
    // Once over every object reachable from the roots.
    void sweep() {
        std::unordered_set<const void*> seen;
        std::vector<HandleRef> queue = roots_;
        while (!queue.empty()) {
            const HandleRef ref = queue.back();
            queue.pop_back();
            if (seen.insert(ref.identity()).second) use(ref, queue);
        }
    }
    int accesses() const { return accesses_; }
    bool ended() const { return ended_; }
    const std::string& outcome() const { return outcome_; } // once the thread is joined

private:
    korb::Client& client() { return korb::ObjectSystem::instance().getPublicClient(); }
    // Every member of the object; every diagnostic but InvalidHandle is an
    // answer. Objects read are queued.
    void use(const HandleRef& ref, std::vector<HandleRef>& queue) {
        std::vector<std::string> properties, methods;
        {
            const vel::mi::Access access(ref);
            if (!access.object()) vel::diag::throwError("Korb:InvalidHandle", {});
            properties = client().getPropertyNames(*access.object());
            methods = client().getMethodNames(*access.object());
        }
        const auto answer = [&](auto&& step) {
            ++accesses_;
            try {
                step();
            } catch (const vel::diag::Exception& e) {
                if (e.identifier() == "Korb:InvalidHandle") throw;
            }
        };
        for (const std::string& name : properties)
            answer([&] {
                const tuvArrayPtr value = client().getProperty(ref, name);
                enqueue(*value, queue);
                if (!reader_) client().setProperty(ref, name, *value);
            });
        for (const std::string& name : methods)
            if (!reader_ || readsOnly(ref, name)) answer([&] { client().callMethod(ref, name); });
    }

    // The objects in a value, lists of them in cells included.
    static void enqueue(const tuvArray& value, std::vector<HandleRef>& queue) {
        if (value.classId() == tuvClass::Object)
            queue.insert(queue.end(), value.handles().begin(), value.handles().end());
        if (value.classId() == tuvClass::Cell)
            for (std::size_t i = 0; i < value.numel(); ++i) enqueue(*value.getCell(i), queue);
    }

    bool readsOnly(const HandleRef& ref, const std::string& name) {
        const vel::mi::Access access(ref);
        if (!access.object()) vel::diag::throwError("Korb:InvalidHandle", {});
        return client().findMethod(client().classOf(*access.object()), name)->binder->readsOnly();
    }

    std::vector<HandleRef> roots_;
    bool reader_;
    std::atomic<int> accesses_{0};
    std::atomic<bool> ended_{false};
    std::string outcome_;
};

int repetitions() {
    const char* given = std::getenv("VELCG_THREAD_REPETITIONS");
    return given ? std::atoi(given) : 100;
}

TEST(ScriptAccessThreads, DestroyingTheModelAndFilesEndsEveryAccessFirst) {
    PlexoInitialize_velcg();
    for (int i = 0, n = repetitions(); i < n && !HasFailure(); ++i) {
        auto model = std::make_unique<testing_support::EveryKindModel>();
        auto files = std::make_unique<testing_support::EveryKindRepository>();
        Script script({model->model.makeRef(), files->repository.makeRef()});
        std::thread thread([&] { script.run(); });
        // Destroy at a different point of the sweep each time.
        while (script.accesses() < 1 + 7 * (i % 40) && !script.ended()) std::this_thread::yield();
        model.reset();
        files.reset();
        thread.join();
        EXPECT_EQ("Korb:InvalidHandle", script.outcome()) << "repetition " << i;
    }
}

// The first pass only reads the model, so scripts read beside it without
// waiting: every property and every method that only reads, of every
// object. What a read caches (a port's graphical source, the reduced blocks)
// the pass may fill too; under ThreadSanitizer neither races. (The sweeps
// after the lock is released are ordered with the pass only by its end.)
TEST(ScriptAccessThreads, ReadsGoAheadBesideASerializationPass) {
    PlexoInitialize_velcg();
    const korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    const vel::feature::ScopedValue background(VELFEAT_VelCGDirectEmitSerialize, 1);
    for (int i = 0, n = std::max(1, repetitions() / 10); i < n && !HasFailure(); ++i) {
        const testing_support::TempDir dir;
        testing_support::EveryKindModel model;
        const HandleRef ref = model.model.makeRef();
        {
            // The pass waits for the store's write lock (for up to its busy
            // timeout) while the script reads.
            coder::Repository holder(dir / VelCG::CGModel::kCodeDescriptorFileName);
            const coder::Transaction lock(holder);
            model.model.serializeModel(dir.path().wstring());
            client.getProperty(ref, "Systems");
            client.callMethod(ref, "getName");
            EXPECT_NE(0, VelCG::CGModel::runningBackgroundPasses())
                << "the reads waited for the pass, repetition " << i;
        }
        Script script({ref}, true);
        do script.sweep();
        while (VelCG::CGModel::runningBackgroundPasses() != 0);
        model.model.finishSerialization();
    }
}

} // namespace
