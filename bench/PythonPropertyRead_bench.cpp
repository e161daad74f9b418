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
//
// BM_DistinctObjectReads reads from Python, once each, a property of every
// one of N distinct objects (the blocks, ports and regions of a chain of N
// blocks, as bench/chain_template.py does) and, in the same template, one
// key of each of N distinct dicts shaped like the blocks of the model
// description: the limit, what a plain script pays for the same read. The
// scalar reads are of objects the template already holds; each list read
// makes the list and the objects in it. Counters, per read in nanoseconds
// and as a ratio to the dict lookup:
//   dict_ns                                     the limit
//   Name_ns, Source_ns, Offset_ns                a block's name, a region's
//                                               source text and offset
//   DataInputPorts_ns, Regions_ns               a block's input ports, a
//                                               port's regions
//   <property>_to_dict                          <property>_ns / dict_ns
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/Port.hpp"
#include "velcg/PythonRuntime.hpp"
#include "velcg/Region.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
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

// A chain of `blocks` blocks in one subsystem, each with an input and an
// output port of one region, block i's output region the source "sig<i>".
std::unique_ptr<VelCG::CGModel> chainModel(std::size_t blocks) {
    using namespace VelCG;
    auto model = std::make_unique<CGModel>();
    auto port = [&](std::size_t signal) {
        auto p = std::make_unique<Port>();
        p->setCGModel(model.get());
        auto region = std::make_unique<Region>();
        region->setSource("sig" + std::to_string(signal));
        region->setOffset(static_cast<int>(signal % 8));
        p->addRegion(std::move(region));
        return p;
    };
    auto chain = std::make_unique<StoredGraphicalSubsystem>(L"chain", GraphicalSubsystemType::Root);
    for (std::size_t i = 0; i < blocks; ++i) {
        auto impl = std::make_unique<StoredGraphicalBlock>(L"Gain" + std::to_wstring(i));
        impl->setType(L"Gain");
        impl->addDataInputPort(port(i == 0 ? 0 : i - 1));
        impl->addDataOutputPort(port(i));
        chain->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl.release()));
    }
    model->getBlockHierarchyMap()->addGraphicalSubsystem(std::move(chain));
    return model;
}

// Writes "name nanoseconds-per-read" lines to `out`.
const char* const kDistinctReadsTemplate = R"(
import time

# The thread's own CPU time, which other processes on the machine do not add to.
def timed(loop, items):
    start = time.thread_time_ns()
    loop(items)
    return (time.thread_time_ns() - start) / len(items)

def read_name(objects):
    for o in objects:
        o.Name

def read_source(objects):
    for o in objects:
        o.Source

def read_offset(objects):
    for o in objects:
        o.Offset

def read_inputs(objects):
    for o in objects:
        o.DataInputPorts

def read_regions(objects):
    for o in objects:
        o.Regions

def look_up(dicts):
    for d in dicts:
        d["dataInputPorts"]

blocks = model.BlockHierarchyMap.Subsystems[0].Blocks
dicts = [{"name": f"Gain{i}", "sid": f"chain:{i + 1}", "type": "Gain",
          "dataInputPorts": [{"regions": [{"source": f"sig{i}"}]}],
          "dataOutputPorts": [{"regions": [{"source": f"sig{i + 1}"}]}]} for i in range(len(blocks))]
times = {"dict": timed(look_up, dicts), "Name": timed(read_name, blocks),
         "DataInputPorts": timed(read_inputs, blocks)}
ports = [b.DataInputPorts[0] for b in blocks]
times["Regions"] = timed(read_regions, ports)
regions = [p.Regions[0] for p in ports]
times["Source"] = timed(read_source, regions)
times["Offset"] = timed(read_offset, regions)
with open(out, "w") as f:
    f.write("".join(f"{name} {ns}\n" for name, ns in times.items()))
)";

void BM_DistinctObjectReads(benchmark::State& state) {
    const auto blocks = static_cast<std::size_t>(state.range(0));
    const auto model = chainModel(blocks);
    const std::string out = (fixture().directory / "distinct.txt").string();
    std::map<std::string, double> sums;
    for (auto _ : state) {
        VelCG::PythonRuntime::Globals globals;
        globals.add("model", *model).add("out", out);
        VelCG::PythonRuntime::runTemplateText(kDistinctReadsTemplate, "distinct_reads.py", globals);
        std::ifstream in(out);
        std::map<std::string, double> times;
        std::string name;
        double ns = 0;
        while (in >> name >> ns) times[name] = ns;
        if (times.size() != 6) throw std::runtime_error("the distinct-reads template reported no times");
        setTimePerRead(state, times["DataInputPorts"]);
        for (const auto& [read, t] : times) sums[read] += t;
    }
    const double n = static_cast<double>(state.iterations());
    for (const auto& [read, sum] : sums) {
        state.counters[read + "_ns"] = sum / n;
        if (read != "dict") state.counters[read + "_to_dict"] = sum / sums["dict"];
    }
}
BENCHMARK(BM_DistinctObjectReads)->Arg(100000)->UseManualTime()->Iterations(kIterations);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    VelCG::PythonRuntime::shutdown();
    return 0;
}
