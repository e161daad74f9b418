// Loading a model description file, against parsing the same file with
// simdjson alone: the fastest JSON parser Debian packages, and the one the
// loader parses with.
//
//     velcg_description_bench --description=FILE [benchmark flags]
//
// BM_LoadDescription: ModelDescription::load of FILE, which reads the file,
// parses it, builds and checks the model and frees the parsed document;
// destroying the model is not timed.
//
// BM_ParseDescriptionOnly: the same file read into simdjson's padded buffer
// and parsed into a DOM by a new parser, which is then freed: the least any
// loader does with the file.
//
// bench/make_description.py writes descriptions of N chained blocks;
// bench/report.py runs this on one of 100,000 blocks.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <memory>
#include <simdjson.h>
#include <string>

#include "velcg/CGModel.hpp"
#include "velcg/ModelDescription.hpp"
#include "velcg/PlexoModule.hpp"

namespace {

std::string descriptionFile;

void BM_LoadDescription(benchmark::State& state) {
    for (auto _ : state) {
        VelCG::ModelDescription description = VelCG::ModelDescription::load(descriptionFile);
        benchmark::DoNotOptimize(description.model.get());
        state.PauseTiming();
        description.model.reset();
        state.ResumeTiming();
    }
}

void BM_ParseDescriptionOnly(benchmark::State& state) {
    for (auto _ : state) {
        simdjson::padded_string text;
        simdjson::dom::parser parser;
        simdjson::dom::element root;
        if (simdjson::padded_string::load(descriptionFile).get(text) || parser.parse(text).get(root)) {
            state.SkipWithError("simdjson cannot parse the description");
            break;
        }
        benchmark::DoNotOptimize(root);
    }
}

BENCHMARK(BM_LoadDescription)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseDescriptionOnly)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    // Our flag, before the library sees the others.
    const char* prefix = "--description=";
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], prefix, std::strlen(prefix)) == 0)
            descriptionFile = argv[i] + std::strlen(prefix);
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    if (descriptionFile.empty()) {
        std::fprintf(stderr, "usage: velcg_description_bench --description=FILE [benchmark flags]\n");
        return 2;
    }
    PlexoInitialize_velcg();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    PlexoTerminate_velcg();
    return 0;
}
