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
// BM_BuildChainDirectly: the model of a file of bench/make_description.py
// (N chained blocks; N is counted from the file) built through the API,
// without JSON: the least any loader does to make the model. Parse-only
// plus this is the floor of a load.
//
// bench/report.py runs this on a description of 100,000 blocks.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <memory>
#include <simdjson.h>
#include <string>

#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDescription.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredSystem.hpp"
#include "velcg/StoredVelType.hpp"
#include "velcg/VelCGType.hpp"

namespace {

std::string descriptionFile;
// The blocks of the file's chain.
std::size_t chainBlocks = 0;

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

std::unique_ptr<VelCG::Port> chainPort(const VelCG::CGModel& model, const std::string& source) {
    auto port = std::make_unique<VelCG::Port>();
    port->setCGModel(&model);
    auto region = std::make_unique<VelCG::Region>();
    region->setSource(source);
    port->addRegion(std::move(region));
    return port;
}

// The model bench/make_description.py describes, as the loader builds it.
std::unique_ptr<VelCG::CGModel> buildChain(std::size_t blocks) {
    using namespace VelCG;
    using Text = StoredGraphicalBlock::TextField;
    auto model = std::make_unique<StoredCGModel>();
    model->setName(L"chain");
    auto system = std::make_unique<StoredSystem>("chain");
    system->setSystemType("root");
    system->setIsRootSystem(true);
    system->setIdentifier("chain");
    system->setStartFcn("chain_initialize");
    system->setOutputUpdateFcn("chain_step");
    model->addFunctionForSystem("chain_initialize", system.get());
    model->addFunctionForSystem("chain_step", system.get());
    model->addSystem(std::move(system));
    model->addVelType(std::make_unique<StoredVelType>("double"));
    auto type = std::make_unique<VelCGType>("double");
    type->setVelTypeIndex(0);
    model->addVelCGType(std::move(type));
    auto subsystem = std::make_unique<StoredGraphicalSubsystem>();
    subsystem->setName(L"chain");
    subsystem->setType(GraphicalSubsystemType::Root);
    subsystem->setSID(L"chain");
    GraphicalSubsystem* root = model->getBlockHierarchyMap()->addGraphicalSubsystem(std::move(subsystem));
    std::string source = "chain_In.u";
    for (std::size_t i = 0; i < blocks; ++i) {
        const bool first = i == 0, last = i + 1 == blocks;
        const char* kind = first ? "Inport" : last ? "Outport" : "Gain";
        const std::string name = kind + std::to_string(i);
        const std::string sid = "chain:" + std::to_string(i + 1);
        const std::string path = "chain/" + name;
        auto block = std::make_unique<StoredGraphicalBlock>();
        block->setCGModel(model.get());
        const StoredGraphicalBlock::TextValue texts[] = {
            {Text::Name, name}, {Text::SID, sid}, {Text::BlockPath, path}, {Text::Type, kind}};
        block->setTexts(texts, 4);
        block->setIsInport(first);
        block->setIsOutport(last);
        if (!first) block->addDataInputPort(chainPort(*model, source));
        if (!last) {
            source = first ? "chain_In.u" : "sig" + std::to_string(i);
            block->addDataOutputPort(chainPort(*model, source));
        }
        root->addGraphicalBlock(std::make_unique<GraphicalBlock>(block.release()));
    }
    model->getBlockHierarchyMap()->finalize();
    return model;
}

void BM_BuildChainDirectly(benchmark::State& state) {
    for (auto _ : state) {
        std::unique_ptr<VelCG::CGModel> model = buildChain(chainBlocks);
        benchmark::DoNotOptimize(model.get());
        state.PauseTiming();
        model.reset();
        state.ResumeTiming();
    }
}

BENCHMARK(BM_LoadDescription)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseDescriptionOnly)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BuildChainDirectly)->Unit(benchmark::kMillisecond);

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
    // The direct build is a floor only if it builds the model the file
    // describes.
    const VelCG::ModelDescription loaded = VelCG::ModelDescription::load(descriptionFile);
    const std::size_t blocks =
        loaded.model->getBlockHierarchyMap()->getSubsystems().at(0)->getBlocks().size();
    if (VelCG::ModelDescription::toText(*buildChain(blocks)) !=
        VelCG::ModelDescription::toText(*loaded.model)) {
        std::fprintf(stderr, "%s is not a chain of bench/make_description.py\n", descriptionFile.c_str());
        return 1;
    }
    chainBlocks = blocks;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    PlexoTerminate_velcg();
    return 0;
}
