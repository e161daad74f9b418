// Cost of one script-bridge operation as the repository grows. Both
// operations should take the same time with 10 and with 10,000 files.

#include <benchmark/benchmark.h>
#include <string>

#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

namespace {

// A repository of n files, module and generic files alternating.
void fill(VelCG::VelCGFileRepository& repo, std::int64_t n) {
    for (std::int64_t i = 0; i < n; ++i) {
        std::string name = "file" + std::to_string(i) + ".c";
        if (i % 2 == 0)
            repo.createModuleSourceFile(name, {static_cast<std::int32_t>(i)});
        else
            repo.createGenericFile(name);
    }
}

void BM_BridgeGetStringAttribute(benchmark::State& state) {
    VelCG::VelCGFileRepository repo;
    fill(repo, state.range(0));
    VelCG::FileRepScrivBridge& bridge = repo.scrivBridge();
    const auto index = static_cast<std::int32_t>(state.range(0) / 2);
    bridge.setAttribute(index, "Type", "source");
    const std::string name = "Type";
    for (auto _ : state) benchmark::DoNotOptimize(bridge.getStringAttribute(index, name));
}
BENCHMARK(BM_BridgeGetStringAttribute)->Arg(10)->Arg(10000);

void BM_BridgeAddSectionContent(benchmark::State& state) {
    VelCG::VelCGFileRepository repo;
    fill(repo, state.range(0));
    VelCG::FileRepScrivBridge& bridge = repo.scrivBridge();
    const auto index = static_cast<std::int32_t>(state.range(0) / 2);
    const boost::shared_ptr<VelCG::FileSectionFragment> fragment(
        new VelCG::StringFileSectionFragment("#define X 1\n"));
    const std::string section = "Defines";
    VelCG::FileSection& target = repo.getFileList()[index]->getFileSection(VelCG::DEFINES_SECTION);
    std::int64_t added = 0;
    for (auto _ : state) {
        bridge.addSectionContent(index, section, fragment);
        // Keep the section short, untimed, so that the figure is the
        // bridge's cost and not that of the allocator paging in fresh memory
        // for an ever-growing list.
        if (++added % 1024 == 0) {
            state.PauseTiming();
            target.clearContent();
            state.ResumeTiming();
        }
    }
}
BENCHMARK(BM_BridgeAddSectionContent)->Arg(10)->Arg(10000);

} // namespace

BENCHMARK_MAIN();
