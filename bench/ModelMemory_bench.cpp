// Memory and time of a large block-diagram model, against plain vectors of
// the same fields.
//
// BM_ModelMemory/N builds a CGModel whose block hierarchy map holds a root
// subsystem with three subsystem blocks and three child subsystems sharing
// N - 3 blocks: in each child an inport, gains and an outport, every block
// named, with a SID, a block path and a type, one data input port fed by the
// block before it and one data output port, each port with one region of
// source "sig<i>" and dimensions [1]. It then finalizes the map and collects
// the reduced blocks (every block is reduced), scans them reading every
// port's regions, and destroys the model.
//
// BM_PlainVectorsModel/N holds the same data per block, port and region in a
// struct of vectors, reserved exactly, with the text in two character pools:
// the cheapest correct representation, and so the limit to compare with.
//
// Counters: heap_bytes_per_block (heap in use after the build and finalize,
// malloc's own overhead included), allocs_per_block (allocations the model
// holds then), alloc_calls_per_block (operator new calls of the build and
// finalize, temporaries included), rss_mib (resident set growth to then, in
// MiB), and the times per block: build_ns_per_block, finalize_ns_per_block
// (the map's finalize and its reduced-block list), scan_ns_per_block and
// destroy_ns_per_block.
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#if defined(__linux__)
#include <malloc.h>
#endif

#include "vel/sys/Process.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"

// Every allocation of the process goes through these, the library's
// included, so the benchmark can count them.
namespace {
std::atomic<std::uint64_t> allocationCount{0};
std::atomic<std::uint64_t> releaseCount{0};

void* countedAllocate(std::size_t size) {
    allocationCount.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}

void countedRelease(void* p) noexcept {
    if (!p) return;
    releaseCount.fetch_add(1, std::memory_order_relaxed);
    std::free(p);
}
} // namespace

void* operator new(std::size_t size) { return countedAllocate(size); }
void* operator new[](std::size_t size) { return countedAllocate(size); }
void operator delete(void* p) noexcept { countedRelease(p); }
void operator delete[](void* p) noexcept { countedRelease(p); }
void operator delete(void* p, std::size_t) noexcept { countedRelease(p); }
void operator delete[](void* p, std::size_t) noexcept { countedRelease(p); }

namespace {

// The platform's view of the process: heap bytes in use and resident set.
// Zero where the platform does not tell.
struct ProcessMemory {
    static std::uint64_t heapInUse() {
#if defined(__GLIBC__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 33))
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
#else
        return 0;
#endif
    }

    // Returns freed memory to the system, so that resident growth measured
    // from here is this run's own.
    static void trim() {
#if defined(__GLIBC__)
        malloc_trim(0);
#endif
    }
};

using Clock = std::chrono::steady_clock;

double nsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

// What a run measured; reported per block.
struct Measurement {
    double build = 0, finalize = 0, scan = 0, destroy = 0;
    std::uint64_t heapBytes = 0, allocations = 0, allocationCalls = 0, residentBytes = 0;

    void report(benchmark::State& state, std::size_t blocks) const {
        const double n = static_cast<double>(blocks);
        state.counters["heap_bytes_per_block"] = static_cast<double>(heapBytes) / n;
        state.counters["allocs_per_block"] = static_cast<double>(allocations) / n;
        state.counters["alloc_calls_per_block"] = static_cast<double>(allocationCalls) / n;
        state.counters["rss_mib"] = static_cast<double>(residentBytes) / (1024.0 * 1024.0);
        state.counters["build_ns_per_block"] = build / n;
        state.counters["finalize_ns_per_block"] = finalize / n;
        state.counters["scan_ns_per_block"] = scan / n;
        state.counters["destroy_ns_per_block"] = destroy / n;
    }
};

// Heap, allocations and resident set from the start of a build to the end
// of its finalize.
struct MemoryProbe {
    std::uint64_t heap, allocations, releases, resident;
    MemoryProbe() {
        ProcessMemory::trim();
        heap = ProcessMemory::heapInUse();
        allocations = allocationCount.load(std::memory_order_relaxed);
        releases = releaseCount.load(std::memory_order_relaxed);
        resident = vel::sys::residentBytes();
    }
    void finish(Measurement& m) const {
        m.heapBytes = ProcessMemory::heapInUse() - heap;
        m.allocationCalls = allocationCount.load(std::memory_order_relaxed) - allocations;
        m.allocations = m.allocationCalls - (releaseCount.load(std::memory_order_relaxed) - releases);
        const std::uint64_t now = vel::sys::residentBytes();
        m.residentBytes = now > resident ? now - resident : 0;
    }
};

constexpr int kChildSubsystems = 3;

template <class String>
String text(const std::string& s) {
    return String(s.begin(), s.end());
}

template <class String>
String text(const char* prefix, std::size_t index) {
    return text<String>(prefix + std::to_string(index));
}

// The blocks of child subsystem c: [first, last) of the N - 3 model blocks.
std::size_t childBegin(std::size_t modelBlocks, int c) {
    return modelBlocks * static_cast<std::size_t>(c) / kChildSubsystems;
}

const char* kindOf(std::size_t index, std::size_t begin, std::size_t end) {
    return index == begin ? "Inport" : index + 1 == end ? "Outport" : "Gain";
}

std::unique_ptr<VelCG::Port> makePort(const VelCG::CGModel& model, std::size_t signal) {
    auto port = std::make_unique<VelCG::Port>();
    port->setCGModel(&model);
    auto region = std::make_unique<VelCG::Region>();
    region->setSource(text<std::string>("sig", signal));
    region->setDimensions({1});
    port->addRegion(std::move(region));
    return port;
}

void buildLibraryModel(VelCG::CGModel& model, std::size_t blocks) {
    using namespace VelCG;
    BlockHierarchyMap& map = *model.getBlockHierarchyMap();
    auto root = std::make_unique<StoredGraphicalSubsystem>(L"chain", GraphicalSubsystemType::Root);
    root->setSID(L"chain");
    for (int c = 0; c < kChildSubsystems; ++c) {
        auto impl = std::make_unique<StoredGraphicalBlock>(text<std::wstring>("Subsystem", c));
        impl->setIsSubsystem(true);
        impl->setType(L"SubSystem");
        impl->setCGModel(&model);
        root->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl.release()));
    }
    map.addGraphicalSubsystem(std::move(root));

    const std::size_t modelBlocks = blocks - kChildSubsystems;
    for (int c = 0; c < kChildSubsystems; ++c) {
        auto subsystem = std::make_unique<StoredGraphicalSubsystem>(text<std::wstring>("Subsystem", c),
                                                                    GraphicalSubsystemType::Atomic);
        subsystem->setSID(text<std::wstring>("chain:s", c));
        subsystem->setSubsystemBlockIndex({0, c});
        const std::size_t begin = childBegin(modelBlocks, c);
        const std::size_t end = childBegin(modelBlocks, c + 1);
        for (std::size_t i = begin; i < end; ++i) {
            const char* kind = kindOf(i, begin, end);
            const auto name = text<std::wstring>(kind, i);
            auto impl = std::make_unique<StoredGraphicalBlock>(name);
            impl->setSID(text<std::wstring>("chain:", i + 1));
            impl->setBlockPath(L"chain/" + name);
            impl->setType(text<std::wstring>(kind));
            impl->setIsInport(i == begin);
            impl->setIsOutport(i + 1 == end);
            impl->setIsReduced(true);
            impl->setCGModel(&model);
            Port* input = impl->addDataInputPort(makePort(model, i == begin ? i : i - 1));
            if (i > begin) input->setGrSrcPortIdx(c + 1, static_cast<int>(i - 1 - begin), 0);
            impl->addDataOutputPort(makePort(model, i));
            subsystem->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl.release()));
        }
        map.addGraphicalSubsystem(std::move(subsystem));
    }
}

// Reads every reduced block's ports and regions; returns a checksum so that
// nothing is optimized away.
std::size_t scanLibraryModel(const VelCG::BlockHierarchyMap& map) {
    std::size_t sum = 0;
    for (const VelCG::GraphicalBlock* block : map.getReducedBlocks()) {
        for (const auto* ports : {&block->getDataInputPorts(), &block->getDataOutputPorts()})
            for (const VelCG::Port* port : *ports) {
                sum += static_cast<std::size_t>(port->getGrSrcPortIdx().block + port->getTestPoint());
                for (const VelCG::Region* region : port->getRegions())
                    sum += region->getSource().size() + region->getDimensions().size() +
                           static_cast<std::size_t>(region->getOffset());
            }
    }
    return sum;
}

void BM_ModelMemory(benchmark::State& state) {
    const auto blocks = static_cast<std::size_t>(state.range(0));
    Measurement m;
    for (auto _ : state) {
        const MemoryProbe probe;
        auto start = Clock::now();
        auto model = std::make_unique<VelCG::CGModel>();
        buildLibraryModel(*model, blocks);
        m.build = nsSince(start);

        start = Clock::now();
        VelCG::BlockHierarchyMap& map = *model->getBlockHierarchyMap();
        map.finalize();
        benchmark::DoNotOptimize(map.getReducedBlocks().size());
        m.finalize = nsSince(start);
        probe.finish(m);

        start = Clock::now();
        benchmark::DoNotOptimize(scanLibraryModel(map));
        m.scan = nsSince(start);

        start = Clock::now();
        model.reset();
        m.destroy = nsSince(start);
    }
    m.report(state, blocks);
}

// The same fields in plain vectors: per block its flags, parent subsystem
// and five strings (name, name in the environment, SID, path, type) as
// offsets into one wide-character pool; per port its source indices, flags
// and first region; per region its offset, function argument, source (into a
// narrow pool) and dimensions (into an integer pool).
struct PlainModel {
    struct PortRow {
        std::int32_t srcSubsystem, srcBlock, srcPort;
        std::uint32_t firstRegion;
        std::uint8_t flags;
    };
    struct RegionRow {
        std::int32_t offset, functionArgument;
        std::uint32_t sourceBegin, dimensionsBegin;
    };
    std::vector<wchar_t> wideText;
    std::vector<std::uint32_t> blockText; // 5 per block, and one past the end
    std::vector<std::uint8_t> blockFlags;
    std::vector<std::uint32_t> blockSubsystem;
    std::vector<std::uint32_t> blockFirstPort; // inputs, then outputs; one past the end
    std::vector<std::uint32_t> blockInputs;
    std::vector<PortRow> ports;
    std::vector<RegionRow> regions;
    std::vector<char> narrowText;
    std::vector<std::int32_t> dimensions;
    std::vector<std::uint32_t> reduced;

    void appendWide(const std::wstring& s) {
        blockText.push_back(static_cast<std::uint32_t>(wideText.size()));
        wideText.insert(wideText.end(), s.begin(), s.end());
    }
    void appendPort(std::int32_t subsystem, std::int32_t block, std::size_t signal) {
        ports.push_back({subsystem, block, 0, static_cast<std::uint32_t>(regions.size()), 0});
        const std::string source = text<std::string>("sig", signal);
        regions.push_back({0, -1, static_cast<std::uint32_t>(narrowText.size()),
                           static_cast<std::uint32_t>(dimensions.size())});
        narrowText.insert(narrowText.end(), source.begin(), source.end());
        dimensions.push_back(1);
    }
};

void buildPlainModel(PlainModel& model, std::size_t blocks) {
    // Sized in a first pass, so that every vector is allocated once.
    std::size_t wide = 0, narrow = 0;
    const std::size_t modelBlocks = blocks - kChildSubsystems;
    for (int c = 0; c < kChildSubsystems; ++c) wide += 2 * text<std::wstring>("Subsystem", c).size() + 9;
    for (int c = 0; c < kChildSubsystems; ++c) {
        const std::size_t begin = childBegin(modelBlocks, c), end = childBegin(modelBlocks, c + 1);
        for (std::size_t i = begin; i < end; ++i) {
            const std::size_t kind = std::char_traits<char>::length(kindOf(i, begin, end));
            const std::size_t name = kind + std::to_string(i).size();
            wide += 3 * name + 6 + std::to_string(i + 1).size() + 6 + kind;
            narrow += 3 + std::to_string(i == begin ? i : i - 1).size() + 3 + std::to_string(i).size();
        }
    }
    model.wideText.reserve(wide);
    model.narrowText.reserve(narrow);
    model.blockText.reserve(5 * blocks + 1);
    model.blockFlags.reserve(blocks);
    model.blockSubsystem.reserve(blocks);
    model.blockFirstPort.reserve(blocks + 1);
    model.blockInputs.reserve(blocks);
    model.ports.reserve(2 * modelBlocks);
    model.regions.reserve(2 * modelBlocks);
    model.dimensions.reserve(2 * modelBlocks);

    enum : std::uint8_t { Reduced = 1, Inport = 2, Outport = 4, Subsystem = 8 };
    for (int c = 0; c < kChildSubsystems; ++c) {
        const auto name = text<std::wstring>("Subsystem", c);
        for (const std::wstring& s : {name, name, std::wstring(), std::wstring(), std::wstring(L"SubSystem")})
            model.appendWide(s);
        model.blockFlags.push_back(Subsystem);
        model.blockSubsystem.push_back(0);
        model.blockFirstPort.push_back(static_cast<std::uint32_t>(model.ports.size()));
        model.blockInputs.push_back(0);
    }
    for (int c = 0; c < kChildSubsystems; ++c) {
        const std::size_t begin = childBegin(modelBlocks, c), end = childBegin(modelBlocks, c + 1);
        for (std::size_t i = begin; i < end; ++i) {
            const char* kind = kindOf(i, begin, end);
            const auto name = text<std::wstring>(kind, i);
            for (const std::wstring& s : {name, name, text<std::wstring>("chain:", i + 1), L"chain/" + name,
                                          text<std::wstring>(kind)})
                model.appendWide(s);
            model.blockFlags.push_back(static_cast<std::uint8_t>(Reduced | (i == begin ? Inport : 0) |
                                                                 (i + 1 == end ? Outport : 0)));
            model.blockSubsystem.push_back(static_cast<std::uint32_t>(c + 1));
            model.blockFirstPort.push_back(static_cast<std::uint32_t>(model.ports.size()));
            model.blockInputs.push_back(1);
            model.appendPort(i > begin ? c + 1 : -1,
                             i > begin ? static_cast<std::int32_t>(i - 1 - begin) : -1,
                             i == begin ? i : i - 1);
            model.appendPort(-1, -1, i);
        }
    }
    model.blockText.push_back(static_cast<std::uint32_t>(model.wideText.size()));
    model.blockFirstPort.push_back(static_cast<std::uint32_t>(model.ports.size()));
}

void finalizePlainModel(PlainModel& model) {
    std::size_t count = 0;
    for (std::uint8_t flags : model.blockFlags) count += flags & 1;
    model.reduced.reserve(count);
    for (std::size_t b = 0; b < model.blockFlags.size(); ++b)
        if (model.blockFlags[b] & 1) model.reduced.push_back(static_cast<std::uint32_t>(b));
}

std::size_t scanPlainModel(const PlainModel& model) {
    std::size_t sum = 0;
    for (std::uint32_t b : model.reduced) {
        for (std::uint32_t p = model.blockFirstPort[b]; p < model.blockFirstPort[b + 1]; ++p) {
            const PlainModel::PortRow& port = model.ports[p];
            sum += static_cast<std::size_t>(port.srcBlock + (port.flags & 1));
            const std::uint32_t lastRegion = p + 1 < model.ports.size()
                                                 ? model.ports[p + 1].firstRegion
                                                 : static_cast<std::uint32_t>(model.regions.size());
            for (std::uint32_t r = port.firstRegion; r < lastRegion; ++r) {
                const PlainModel::RegionRow& region = model.regions[r];
                const std::size_t sourceEnd =
                    r + 1 < model.regions.size() ? model.regions[r + 1].sourceBegin : model.narrowText.size();
                const std::size_t dimensionsEnd = r + 1 < model.regions.size()
                                                      ? model.regions[r + 1].dimensionsBegin
                                                      : model.dimensions.size();
                sum += (sourceEnd - region.sourceBegin) + (dimensionsEnd - region.dimensionsBegin) +
                       static_cast<std::size_t>(region.offset);
            }
        }
    }
    return sum;
}

void BM_PlainVectorsModel(benchmark::State& state) {
    const auto blocks = static_cast<std::size_t>(state.range(0));
    Measurement m;
    for (auto _ : state) {
        const MemoryProbe probe;
        auto start = Clock::now();
        auto model = std::make_unique<PlainModel>();
        buildPlainModel(*model, blocks);
        m.build = nsSince(start);

        start = Clock::now();
        finalizePlainModel(*model);
        m.finalize = nsSince(start);
        probe.finish(m);

        start = Clock::now();
        benchmark::DoNotOptimize(scanPlainModel(*model));
        m.scan = nsSince(start);

        start = Clock::now();
        model.reset();
        m.destroy = nsSince(start);
    }
    m.report(state, blocks);
}

BENCHMARK(BM_ModelMemory)->Arg(100000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainVectorsModel)->Arg(100000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
