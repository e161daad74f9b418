// A script thread uses every member of every object it reaches while the
// owner destroys them, VELCG_THREAD_REPETITIONS times (default 100).

#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include "EveryKindModel.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/Lifetime.hpp"
#include "velcg/PlexoModule.hpp"

using vel::mi::HandleRef;

namespace {

// Sweeps everything reachable from the roots until an access fails.
class Script {
public:
    explicit Script(std::vector<HandleRef> roots) : roots_(std::move(roots)) {}

    void run() {
        try {
            for (;;) sweep();
        } catch (const vel::diag::Exception& e) {
            outcome_ = e.identifier();
        }
        ended_ = true;
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
                if (value->classId() == tuvClass::Object)
                    queue.insert(queue.end(), value->handles().begin(), value->handles().end());
                client().setProperty(ref, name, *value);
            });
        for (const std::string& name : methods) answer([&] { client().callMethod(ref, name); });
    }

    void sweep() {
        std::unordered_set<const void*> seen;
        std::vector<HandleRef> queue = roots_;
        while (!queue.empty()) {
            const HandleRef ref = queue.back();
            queue.pop_back();
            if (seen.insert(ref.identity()).second) use(ref, queue);
        }
    }

    std::vector<HandleRef> roots_;
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

} // namespace
