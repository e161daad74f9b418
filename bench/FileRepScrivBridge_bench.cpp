// Cost of one script-bridge operation while a template sweeps the files of
// a repository, file after file, with 10 and with 10,000 files. The
// 10-file figure is the limit: every operation is meant to take the same
// time however many files there are.

#include <benchmark/benchmark.h>
#include <string>

#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"

namespace {

// A repository of n files, module and generic files alternating, each with
// its type set.
void fill(VelCG::VelCGFileRepository& repo, std::int32_t n) {
    for (std::int32_t i = 0; i < n; ++i) {
        std::string name = "file" + std::to_string(i) + ".c";
        if (i % 2 == 0)
            repo.createModuleSourceFile(name, {i});
        else
            repo.createGenericFile(name);
        repo.scrivBridge().setAttribute(i, "Type", i % 4 < 2 ? "source" : "header");
    }
}

void BM_BridgeSweepGetStringAttribute(benchmark::State& state) {
    const auto files = static_cast<std::int32_t>(state.range(0));
    VelCG::VelCGFileRepository repo;
    fill(repo, files);
    const VelCG::FileRepScrivBridge& bridge = repo.scrivBridge();
    const std::string name = "Type";
    std::int32_t index = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(bridge.getStringAttribute(index, name));
        if (++index == files) index = 0;
    }
    state.SetItemsProcessed(state.iterations());
}

// Both sizes hold the same number of fragments: every kFragmentsHeld
// additions the sections are cleared, untimed. So the figures differ only
// in how many files the additions are spread over.
constexpr std::int64_t kFragmentsHeld = 1 << 16;

void BM_BridgeSweepAddSectionContent(benchmark::State& state) {
    const auto files = static_cast<std::int32_t>(state.range(0));
    VelCG::VelCGFileRepository repo;
    fill(repo, files);
    VelCG::FileRepScrivBridge& bridge = repo.scrivBridge();
    const boost::shared_ptr<VelCG::FileSectionFragment> fragment(
        new VelCG::StringFileSectionFragment("#define X 1\n"));
    const std::string section = "Defines";
    std::int32_t index = 0;
    std::int64_t held = 0;
    for (auto _ : state) {
        bridge.addSectionContent(index, section, fragment);
        if (++index == files) index = 0;
        if (++held == kFragmentsHeld) {
            state.PauseTiming();
            for (VelCG::VelCGFile* file : repo.getFileList()) file->clearContents();
            held = 0;
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_BridgeSweepGetStringAttribute)->ArgName("files")->Arg(10)->Arg(10000);
BENCHMARK(BM_BridgeSweepAddSectionContent)->ArgName("files")->Arg(10)->Arg(10000);

} // namespace

BENCHMARK_MAIN();
