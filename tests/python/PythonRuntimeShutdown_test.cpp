// In an executable of its own: once shut down, the interpreter cannot start
// again in the same process.
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "DiagnosticTesting.hpp"
#include "TempDir.hpp"
#include "velcg/PythonRuntime.hpp"

namespace {

using testing_support::diagnosticOf;
using VelCG::PythonRuntime;

TEST(PythonRuntimeShutdown, TemplatesAreRefusedOnceTheInterpreterIsShutDown) {
    EXPECT_FALSE(PythonRuntime::isRunning()) << "started by the first template only";
    // Started from a thread that has ended when the interpreter is shut down.
    std::string started;
    std::thread([&] {
        started = diagnosticOf([] { PythonRuntime::runTemplateText("import velcg\n", "start.py", {}); });
    }).join();
    EXPECT_EQ("no diagnostic", started);
    EXPECT_TRUE(PythonRuntime::isRunning());

    PythonRuntime::shutdown();
    EXPECT_FALSE(PythonRuntime::isRunning());
    EXPECT_EQ("VelCG:Python:Finalized",
              diagnosticOf([] { PythonRuntime::runTemplateText("x = 1\n", "after.py", {}); }));
    testing_support::TempDir dir;
    testing_support::writeBytes(dir / "t.py", "x = 1\n");
    EXPECT_EQ("VelCG:Python:Finalized",
              diagnosticOf([&] { PythonRuntime::runTemplate((dir / "t.py").string(), {}); }));
    PythonRuntime::shutdown(); // a second shutdown changes nothing
    EXPECT_FALSE(PythonRuntime::isRunning());
}

} // namespace
