#include "velcg/PythonRuntime.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <pybind11/pybind11.h>
#include <string>
#include <thread>
#include <vector>

#include "StartLatch.hpp"
#include "TempDir.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

using testing_support::fileBytes;
using testing_support::TempDir;
using VelCG::PythonRuntime;

namespace {

// The diagnostic a template run raises: identifier, then each argument on a
// line of its own; "no diagnostic" when the run succeeds.
template <class F>
std::string failureOf(F&& run) {
    try {
        run();
    } catch (const vel::diag::Exception& e) {
        std::string out = e.identifier();
        for (const std::string& a : e.arguments()) out += "\n" + a;
        return out;
    }
    return "no diagnostic";
}

std::string failureOfText(const std::string& source, const std::string& fileName,
                          const PythonRuntime::Globals& globals = {}) {
    return failureOf([&] { PythonRuntime::runTemplateText(source, fileName, globals); });
}

// A model with one code-generation type and one data type.
struct SmallModel {
    VelCG::CGModel model;
    VelCG::VelType* velType = nullptr;

    SmallModel() {
        model.addVelCGType(std::make_unique<VelCG::VelCGType>("int32_t"));
        auto t = std::make_unique<VelCG::VelType>("int32");
        velType = t.get();
        model.addVelType(std::move(t));
    }
};

// First in this file, so that the interpreter starts, and the module is
// first used, from several threads at once.
TEST(PythonRuntime, TemplatesRunFromSeveralThreads) {
    constexpr int kThreads = 3;
    constexpr int kRuns = 20;
    std::vector<std::unique_ptr<SmallModel>> models;
    for (int i = 0; i < kThreads; ++i) models.push_back(std::make_unique<SmallModel>());
    std::vector<std::string> failures(kThreads);
    testing_support::StartLatch latch(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            latch.arriveAndWait();
            // Each thread adds its own step to its own object; a run that saw
            // another thread's globals would add the wrong step.
            PythonRuntime::Globals globals;
            globals.add("obj", *models[i]->velType).add("step", std::int64_t(i + 1));
            for (int run = 0; run < kRuns && failures[i].empty(); ++run) {
                const std::string f = failureOfText("obj.ID = obj.ID + step\n", "step.py", globals);
                if (f != "no diagnostic") failures[i] = f;
            }
        });
    for (auto& t : threads) t.join();
    for (int i = 0; i < kThreads; ++i) {
        EXPECT_EQ("", failures[i]) << "thread " << i;
        EXPECT_EQ(VelCG::VelType::kNoID + kRuns * (i + 1), models[i]->velType->getID()) << "thread " << i;
    }
}

TEST(PythonRuntime, ATemplateReadsItsGlobalsAndWritesThroughTheBridge) {
    TempDir dir;
    SmallModel m;
    VelCG::VelCGFileRepository repository;
    repository.createGenericFile("out.c");
    const std::string path = (dir / "out.c").string();
    testing_support::writeBytes(dir / "gen.py", R"(
import velcg

bridge = velcg.bridge(repository)
kind = type(model).__name__
bridge.addSectionContent(0, "Includes", f"/* {kind} {model.CGTypes[0].Name} {label} {count} */\n")
bridge.addSectionContent(0, "Functions", "int f(void);\n")
with open(path, "wb") as out:
    bridge.writeSection(0, "Includes", out)
    out.write(b"/* between */\n")
    bridge.writeSection(0, "Functions", out)
)");
    PythonRuntime::Globals globals;
    globals.add("model", m.model)
        .add("repository", repository)
        .add("path", path)
        .add("label", "gain \xc3\xa9")
        .add("count", std::int64_t(-(std::int64_t(1) << 53) - 1));
    PythonRuntime::runTemplate((dir / "gen.py").string(), globals);
    EXPECT_TRUE(PythonRuntime::isRunning());
    EXPECT_EQ("/* CGModel int32_t gain \xc3\xa9 -9007199254740993 */\n/* between */\nint f(void);\n",
              fileBytes(path));
}

TEST(PythonRuntime, GlobalsOfEachKindArriveAsTheirPythonValues) {
    SmallModel m;
    PythonRuntime::Globals globals;
    globals.add("obj", *m.velType).add("text", "").add("number", std::int64_t(INT64_MAX));
    EXPECT_EQ("no diagnostic", failureOfText(R"(
import velcg
assert isinstance(obj, velcg.VelType) and obj.getDTName() == "int32", repr(obj)
assert text == "" and type(text) is str, repr(text)
assert number == 2**63 - 1 and type(number) is int, repr(number)
assert __name__ == "__main__"
obj.ID = 12
)",
                                             "globals.py", globals));
    EXPECT_EQ(12, m.velType->getID()) << "the template wrote the native object";
    // Globals of one run are gone in the next.
    EXPECT_EQ("no diagnostic", failureOfText("assert 'obj' not in globals()\n", "next.py"));
}

TEST(PythonRuntime, ARaisingTemplateReportsItsTraceback) {
    SmallModel m;
    VelCG::VelCGFileRepository repository;
    PythonRuntime::Globals globals;
    globals.add("model", m.model);
    struct Row {
        const char* what;
        const char* source;
        std::vector<std::string> inMessage;
    } rows[] = {
        {"a Python exception",
         "x = 1\n\ndef check(v):\n    raise ValueError(f'bad value {v}')\n\ncheck(42)\n",
         {"Traceback", "File \"failing.py\", line 6", "File \"failing.py\", line 4, in check",
          "ValueError: bad value 42"}},
        {"an unknown member",
         "import velcg\n\nmodel.NoSuchThing\n",
         {"File \"failing.py\", line 3", "velcg.UnknownMemberError: Korb:UnknownProperty"}},
        {"a bridge of something else than a repository",
         "import velcg\nvelcg.bridge(model)\n",
         {"File \"failing.py\", line 2", "velcg.Error: VelCG:Python:NotARepository"}},
        {"a syntax error", "x = (\n", {"File \"failing.py\", line 1", "SyntaxError"}},
    };
    for (const auto& r : rows) {
        const std::string failure = failureOfText(r.source, "failing.py", globals);
        EXPECT_EQ(0u, failure.find("VelCG:Python:TemplateFailed\nfailing.py\n")) << r.what << ":\n"
                                                                                 << failure;
        for (const std::string& part : r.inMessage)
            EXPECT_NE(std::string::npos, failure.find(part)) << r.what << ": " << part << "\n" << failure;
    }

    // From a file: the traceback names the file's path; a missing file is
    // reported before any Python runs.
    TempDir dir;
    const std::string path = (dir / "broken.py").string();
    testing_support::writeBytes(path, "import sys\nsys.exit(3)\n");
    const std::string failure = failureOf([&] { PythonRuntime::runTemplate(path, {}); });
    EXPECT_EQ(0u, failure.find("VelCG:Python:TemplateFailed\n" + path)) << failure;
    EXPECT_NE(std::string::npos, failure.find("File \"" + path + "\", line 2")) << failure;
    EXPECT_NE(std::string::npos, failure.find("SystemExit: 3")) << failure;
    const std::string missing = (dir / "missing.py").string();
    EXPECT_EQ("VelCG:Python:CannotReadTemplate\n" + missing + "\nit cannot be opened",
              failureOf([&] { PythonRuntime::runTemplate(missing, {}); }));
}

} // namespace

// The module reaches into pybind11's internal API (python/src/PybindInternals),
// which may change in any pybind11 release.
TEST(PybindInternals, WrittenForThisPybind11Version) {
    EXPECT_EQ(PYBIND11_VERSION_MAJOR * 100 + PYBIND11_VERSION_MINOR, 210)
        << "re-check setUpSharedState, setCurrentPythonError and the FileIndex caster in "
           "python/src/PybindInternals.cpp against this pybind11, then update this test";
}
