// Templates that leave threads using the model and the files when they
// return, while the code generator goes on to destroy both. The number of
// generations is VELCG_THREAD_REPETITIONS (default 100).

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>

#include "EveryKindModel.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/PythonRuntime.hpp"

using VelCG::PythonRuntime;

namespace {

int repetitions() {
    const char* given = std::getenv("VELCG_THREAD_REPETITIONS");
    return given ? std::atoi(given) : 100;
}

void runTemplate(PythonRuntime::Globals globals) {
    try {
        PythonRuntime::runTemplate(VELCG_LEFT_RUNNING_TEMPLATE, globals);
    } catch (const vel::diag::Exception& e) {
        FAIL() << e.identifier() << ": " << e.diagnostic().message();
    }
}

TEST(TemplateThreads, ThreadsLeftRunningNeverReachADestroyedModel) {
    const int n = repetitions();
    for (int i = 0; i < n && !testing::Test::HasFailure(); ++i) {
        auto model = std::make_unique<testing_support::EveryKindModel>();
        auto files = std::make_unique<testing_support::EveryKindRepository>();
        runTemplate(PythonRuntime::Globals().add("model", model->model).add("repository", files->repository));
        // Into the threads' sweeps by a different amount each time, tear down as velcg-gen does.
        std::this_thread::sleep_for(std::chrono::microseconds(37 * (i % 50)));
        model.reset();
        files.reset();
    }
    // Threads end when their run does, while the model lives on.
    testing_support::EveryKindModel model;
    testing_support::EveryKindRepository files;
    runTemplate(PythonRuntime::Globals().add("model", model.model).add("repository", files.repository));
    runTemplate(PythonRuntime::Globals().add("model", model.model).add("finish", std::int64_t(1)));
}

} // namespace
