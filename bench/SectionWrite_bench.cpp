// Writing generated text through the script bridge, against the cheapest
// correct way to put the same bytes on the same stream: one fwrite per
// 64-byte fragment from a contiguous buffer.
//
// Benchmarks come in pairs, library and limit, run in the same process:
//   BM_BridgeWriteSection/<target>   vs BM_RawFwrite/<target>
//   BM_BridgeFillAndWrite/<target>   vs BM_RawFwrite/<target>
// where <target> is 0 for /dev/null and 1 for a file in the page cache.

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>

#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGFileSectionKind.hpp"
#include "velcg/VelCGGenericFile.hpp"

namespace {

constexpr std::size_t kFragments = 1'000'000;
constexpr std::size_t kFragmentBytes = 64;

// kFragments distinct lines of kFragmentBytes bytes each, one after the other.
const std::string& fragmentText() {
    static const std::string text = [] {
        std::string all;
        all.reserve(kFragments * kFragmentBytes);
        for (std::size_t i = 0; i < kFragments; ++i) {
            std::string line = "    out[" + std::to_string(i) + "] = in[" + std::to_string(i) + "] * gain;";
            line.resize(kFragmentBytes - 1, ' ');
            all += line;
            all += '\n';
        }
        return all;
    }();
    return text;
}

std::string fragment(std::size_t i) { return fragmentText().substr(i * kFragmentBytes, kFragmentBytes); }

// The stream a benchmark writes to: /dev/null, or a file that stays in the
// page cache because every iteration rewrites the same bytes from its start.
class Output {
public:
    explicit Output(std::int64_t target) {
        if (target == 0) {
            stream_ = std::fopen("/dev/null", "wb");
        } else {
            path_ = std::filesystem::temp_directory_path() / "velcg-bench-section-write.c";
            stream_ = std::fopen(path_.c_str(), "wb");
        }
    }
    ~Output() {
        if (stream_) std::fclose(stream_);
        if (!path_.empty()) std::filesystem::remove(path_);
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    std::FILE* stream() const { return stream_; }
    void rewind() const { std::fseek(stream_, 0, SEEK_SET); }
    void flush() const { std::fflush(stream_); }

private:
    std::filesystem::path path_;
    std::FILE* stream_ = nullptr;
};

void setLabels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kFragments));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kFragments * kFragmentBytes));
    state.SetLabel(state.range(0) == 0 ? "/dev/null" : "page-cache file");
}

const std::string kSection = "Functions";

void BM_RawFwrite(benchmark::State& state) {
    const std::string& text = fragmentText();
    Output out(state.range(0));
    if (!out.stream()) return state.SkipWithError("cannot open the output");
    for (auto _ : state) {
        out.rewind();
        for (std::size_t i = 0; i < kFragments; ++i)
            std::fwrite(text.data() + i * kFragmentBytes, 1, kFragmentBytes, out.stream());
        out.flush();
    }
    setLabels(state);
}

void BM_BridgeWriteSection(benchmark::State& state) {
    VelCG::VelCGFileRepository repository;
    repository.createGenericFile("bench.c");
    VelCG::FileRepScrivBridge& bridge = repository.scrivBridge();
    for (std::size_t i = 0; i < kFragments; ++i)
        bridge.addSectionContent(0, kSection,
                                 boost::make_shared<VelCG::StringFileSectionFragment>(fragment(i)));
    Output out(state.range(0));
    if (!out.stream()) return state.SkipWithError("cannot open the output");
    for (auto _ : state) {
        out.rewind();
        bridge.writeSection(0, kSection, out.stream());
        out.flush();
    }
    setLabels(state);
}

// Fill a section fragment by fragment, from text the template computed,
// then write it. Dropping the fragments afterwards is not timed.
void BM_BridgeFillAndWrite(benchmark::State& state) {
    VelCG::VelCGFileRepository repository;
    repository.createGenericFile("bench.c");
    VelCG::FileRepScrivBridge& bridge = repository.scrivBridge();
    VelCG::FileSection& section = repository.getFileList()[0]->getFileSection(VelCG::FUNCTIONS_SECTION);
    const std::string& text = fragmentText();
    Output out(state.range(0));
    if (!out.stream()) return state.SkipWithError("cannot open the output");
    for (auto _ : state) {
        for (std::size_t i = 0; i < kFragments; ++i)
            bridge.addSectionContent(0, kSection,
                                     boost::make_shared<VelCG::StringFileSectionFragment>(
                                         std::string(text.data() + i * kFragmentBytes, kFragmentBytes)));
        out.rewind();
        bridge.writeSection(0, kSection, out.stream());
        out.flush();
        state.PauseTiming();
        section.clearContent();
        state.ResumeTiming();
    }
    setLabels(state);
}

BENCHMARK(BM_RawFwrite)->ArgName("file")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_BridgeWriteSection)
    ->ArgName("file")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_BridgeFillAndWrite)
    ->ArgName("file")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

BENCHMARK_MAIN();
