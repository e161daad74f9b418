// Reading one property of a native object 1,000,000 times, as a Python
// template does it through the module velcg and as a C++ caller does it
// through the object-system client (the host value converted to the native
// value a C++ script works with), for a text property (VelCGType "Name") and
// an int32 one ("NBits").
//
// The Python loops run in the embedded interpreter through the runtime
// (PythonRuntime) and are timed inside Python with time.perf_counter_ns; the
// same loop reading an attribute of a plain Python object is the baseline,
// the cost of the loop itself. Every figure is a manual time per read.
// BM_PropertyReadFromPython also measures the baseline and the C++ read in
// each iteration and reports, as counters:
//   python_ns, baseline_ns, client_ns  each read, in nanoseconds
//   python_net_ns                      python_ns - baseline_ns
//   python_to_client                   python_ns / client_ns
//   python_net_to_client               python_net_ns / client_ns
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/PythonRuntime.hpp"
#include "velcg/VelCGType.hpp"

namespace {

constexpr std::int64_t kReads = 1000000;
constexpr int kIterations = 3;

// The native object read, and a directory for what the templates report.
struct Fixture {
    VelCG::VelCGType type{"int32_t"};
    std::filesystem::path directory;

    Fixture() {
        PlexoInitialize_velcg();
        type.setNBits(32);
        directory = std::filesystem::temp_directory_path() /
                    ("velcg-python-bench-" + std::to_string(std::random_device()()));
        std::filesystem::create_directories(directory);
    }
    ~Fixture() {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

// A template that reads `property` kReads times from `target` (the native
// object, or a plain Python object holding the same value) and writes the
// nanoseconds the loop took to the file `out`. The loop is a function so
// that the object is a local variable, as in a template's own functions.
std::string loopTemplate(const std::string& property, bool plain) {
    std::string source = "import time\n";
    if (plain)
        source +=
            "class Plain:\n    pass\n\ntarget = Plain()\ntarget." + property + " = obj." + property + "\n";
    else
        source += "target = obj\n";
    source += "\ndef loop(o, n):\n    for _ in range(n):\n        o." + property +
              "\n\n"
              "start = time.perf_counter_ns()\n"
              "loop(target, reads)\n"
              "elapsed = time.perf_counter_ns() - start\n"
              "with open(out, 'w') as f:\n"
              "    f.write(str(elapsed))\n";
    return source;
}

// Nanoseconds per read of the Python loop.
double pythonNsPerRead(const std::string& property, bool plain) {
    Fixture& f = fixture();
    const std::string out = (f.directory / "elapsed.txt").string();
    VelCG::PythonRuntime::Globals globals;
    globals.add("obj", f.type).add("reads", kReads).add("out", out);
    VelCG::PythonRuntime::runTemplateText(loopTemplate(property, plain), "read_loop.py", globals);
    std::ifstream in(out);
    std::int64_t elapsed = -1;
    in >> elapsed;
    if (!in || elapsed < 0) throw std::runtime_error("the loop template reported no time");
    return static_cast<double>(elapsed) / kReads;
}

// What a C++ script gets for a property: the native value.
template <class Convert>
double clientNsPerRead(const std::string& property, Convert convert) {
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    const vel::mi::HandleRef ref = fixture().type.makeRef();
    const auto start = std::chrono::steady_clock::now();
    for (std::int64_t i = 0; i < kReads; ++i) {
        auto value = convert(*client.getProperty(ref, property));
        benchmark::DoNotOptimize(value);
    }
    const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count() / kReads;
}

double clientNsPerRead(const std::string& property) {
    if (property == "Name") return clientNsPerRead(property, [](const tuvArray& a) { return a.toUtf8(); });
    return clientNsPerRead(property, [](const tuvArray& a) { return a.int32Value(); });
}

void setTimePerRead(benchmark::State& state, double ns) { state.SetIterationTime(ns * 1e-9); }

void BM_PropertyReadFromPython(benchmark::State& state, const std::string& property) {
    double python = 0, baseline = 0, client = 0;
    for (auto _ : state) {
        const double p = pythonNsPerRead(property, false);
        setTimePerRead(state, p);
        python += p;
        baseline += pythonNsPerRead(property, true);
        client += clientNsPerRead(property);
    }
    const double n = static_cast<double>(state.iterations());
    python /= n;
    baseline /= n;
    client /= n;
    state.counters["python_ns"] = python;
    state.counters["baseline_ns"] = baseline;
    state.counters["client_ns"] = client;
    state.counters["python_net_ns"] = python - baseline;
    state.counters["python_to_client"] = python / client;
    state.counters["python_net_to_client"] = (python - baseline) / client;
}
BENCHMARK_CAPTURE(BM_PropertyReadFromPython, Name, "Name")->UseManualTime()->Iterations(kIterations);
BENCHMARK_CAPTURE(BM_PropertyReadFromPython, NBits, "NBits")->UseManualTime()->Iterations(kIterations);

void BM_AttributeReadPythonBaseline(benchmark::State& state, const std::string& property) {
    for (auto _ : state) setTimePerRead(state, pythonNsPerRead(property, true));
}
BENCHMARK_CAPTURE(BM_AttributeReadPythonBaseline, Name, "Name")->UseManualTime()->Iterations(kIterations);
BENCHMARK_CAPTURE(BM_AttributeReadPythonBaseline, NBits, "NBits")->UseManualTime()->Iterations(kIterations);

void BM_PropertyReadFromClient(benchmark::State& state, const std::string& property) {
    for (auto _ : state) setTimePerRead(state, clientNsPerRead(property));
}
BENCHMARK_CAPTURE(BM_PropertyReadFromClient, Name, "Name")->UseManualTime()->Iterations(kIterations);
BENCHMARK_CAPTURE(BM_PropertyReadFromClient, NBits, "NBits")->UseManualTime()->Iterations(kIterations);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    VelCG::PythonRuntime::shutdown();
    return 0;
}
