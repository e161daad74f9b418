// Serialization of the whole model into the code descriptor store: the
// records written at each level of the switch, the background pass and its
// join points, and failures.
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

#include "DescriptorDump.hpp"
#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "ExpectedFile.hpp"
#include "StartLatch.hpp"
#include "TempDir.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/Features.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/PlexoModule.hpp"

using namespace VelCG;
using namespace testing_support;

namespace {

// A gate one thread waits at until another opens it; the waiting side
// announces its arrival so that the other can act while it waits.
struct Gate {
    testing_support::StartLatch arrived{2}, opened{2};
    void arriveAndWait() {
        arrived.arriveAndWait();
        opened.arriveAndWait();
    }
    void waitForArrival() { arrived.arriveAndWait(); }
    void open() { opened.arriveAndWait(); }
};

// Its first pass stops in getName until the gate opens.
class GatedModel : public StoredCGModel {
public:
    explicit GatedModel(Gate& gate) : gate_(gate) {}
    ~GatedModel() override { waitForSerialization(); }
    std::wstring getName() const override {
        gate_.arriveAndWait();
        passedGate = true;
        return StoredCGModel::getName();
    }

    mutable std::atomic<bool> passedGate{false};

private:
    Gate& gate_;
};

// A block whose name is asked for only by a pass; stops there until the gate
// opens. Owned by the model, unlike the gate.
class GatedBlock : public StoredGraphicalBlock {
public:
    explicit GatedBlock(Gate& gate) : StoredGraphicalBlock(L"Gated"), gate_(gate) {}
    std::wstring getName() override {
        gate_.arriveAndWait();
        return StoredGraphicalBlock::getName();
    }

private:
    Gate& gate_;
};

// Adds a block to the model's child subsystem.
void addBlock(CGModel& model, GraphicalBlockIF* block) {
    model.getBlockHierarchyMap()->getSubsystems()[1]->addGraphicalBlock(
        std::make_unique<GraphicalBlock>(block));
}

std::filesystem::path storeIn(const TempDir& dir) { return dir / CGModel::kCodeDescriptorFileName; }

bool holdsModel(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file)) return false;
    return diagnosticOf([&] { dumpOf(file); }) != "coder:descriptor:NoModel";
}

// The expected dump at one level (CGModelSerialize_golden.txt).
std::string expectedDump(int level) {
    return testing_support::expectedDump(
        testing_support::besideSource(__FILE__, "CGModelSerialize_golden.txt"), level);
}

// Both passes, as a code generator runs them; the model is destroyed before
// the file is read, which waits for a background pass.
std::string serializeAt(int level, const TempDir& dir) {
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, level);
    {
        EveryKindModel m;
        m.model.serializeModel(dir.path().wstring());
        m.model.serializeModelAfterScriv(dir.path().wstring());
        EXPECT_EQ(level == 3, m.model.isTAQBlockActualSrc(L"every_kind/Sub/Inner")) << level;
        EXPECT_FALSE(m.model.isTAQBlockActualSrc(L"every_kind/In1")) << "a leaf's leaf is not recorded";
    }
    return std::filesystem::exists(storeIn(dir)) ? dumpOf(storeIn(dir)) : "(no file)";
}

TEST(CGModelSerialize, WritesWhatEachSwitchLevelSelects) {
    for (int level : {1, 2, 3, 4}) {
        TempDir dir;
        EXPECT_EQ(expectedDump(level), serializeAt(level, dir)) << "level " << level;
    }
    for (int level : {0, -1}) {
        TempDir dir;
        EXPECT_EQ("(no file)", serializeAt(level, dir)) << "level " << level;
    }
}

// A code generator run twice on one model, each time into a fresh
// directory, writes the same bytes: nothing of the run (such as the first
// pass's token) stays in the file, so that an unchanged output need not be
// replaced.
TEST(CGModelSerialize, TheSameModelWrittenTwiceGivesTheSameBytes) {
    for (int level : {1, 4}) {
        TempDir first, second;
        serializeAt(level, first);
        serializeAt(level, second);
        const std::string a = testing_support::fileBytes(storeIn(first));
        // Not EXPECT_EQ, which would print both files.
        EXPECT_TRUE(!a.empty() && a == testing_support::fileBytes(storeIn(second))) << "level " << level;
    }
}

// While the first pass of a background serialization waits, the next
// serializeModelAfterScriv or serializeModel returns only once that pass has
// committed.
TEST(CGModelSerialize, BackgroundPassRunsAfterSerializeModelReturnsAndIsAwaited) {
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, 1);
    for (const bool again : {false, true}) {
        SCOPED_TRACE(again ? "serializeModel" : "serializeModelAfterScriv");
        TempDir first, second;
        const TempDir& last = again ? second : first;
        Gate gate;
        {
            testing_support::BasicEveryKindModel<GatedModel> gated(gate);
            GatedModel& model = gated.model;
            model.serializeModel(first.path().wstring());
            // The pass now waits in getName, before it creates the model record.
            gate.waitForArrival();
            EXPECT_FALSE(holdsModel(storeIn(first)));
            std::thread opener([&] { gate.open(); });
            if (again)
                model.serializeModel(second.path().wstring());
            else
                model.serializeModelAfterScriv(first.path().wstring());
            EXPECT_TRUE(model.passedGate);
            EXPECT_TRUE(holdsModel(storeIn(first)));
            if (again) model.serializeModelAfterScriv(second.path().wstring());
            opener.join();
        }
        EXPECT_EQ(expectedDump(1), dumpOf(storeIn(last)));
        if (again) {
            EXPECT_NE(std::string::npos, dumpOf(storeIn(first)).find("CoderGroups: []"));
        }
    }
}

TEST(CGModelSerialize, DestroyingTheModelWaitsForTheRunningPass) {
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, 1);
    TempDir dir;
    Gate gate;
    auto m = std::make_unique<EveryKindModel>();
    addBlock(m->model, new GatedBlock(gate));
    m->model.serializeModel(dir.path().wstring());
    gate.waitForArrival();
    std::thread opener([&] { gate.open(); });
    // The pass still reads the blocks that the destructor deletes.
    m.reset();
    opener.join();
    EXPECT_NE(std::string::npos, dumpOf(storeIn(dir)).find("Name: \"Gated\""));
}

TEST(CGModelSerialize, BackgroundFailureIsRaisedAtSerializeModelAfterScrivOrReported) {
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, 1);
    TempDir dir;
    const std::wstring missing = (dir / "missing").wstring();
    std::vector<std::string> reported;
    struct Reporter {
        DiagnosticReporter previous;
        ~Reporter() { setDiagnosticReporter(previous); }
    } reporter{setDiagnosticReporter(
        [&](const vel::diag::Diagnostic& d) { reported.push_back(d.identifier() + " " + d.message()); })};
    {
        StoredCGModel model;
        model.serializeModel(missing);
        model.serializeModel(std::wstring(1, 0xD800)); // not text: fails too, but the first failure is kept
        EXPECT_EQ("coder:Repository:CannotOpen",
                  diagnosticOf([&] { model.serializeModelAfterScriv(missing); }));
        // Raised once: this call starts the second pass, which fails as well.
        model.serializeModelAfterScriv(missing);
        EXPECT_TRUE(reported.empty());
    }
    ASSERT_EQ(1u, reported.size());
    EXPECT_EQ(0u, reported[0].find(std::string(messages::Model::SerializationFailed) + " "));
    EXPECT_NE(std::string::npos, reported[0].find("coder:Repository:CannotOpen"));
}

TEST(CGModelSerialize, SynchronousFailureReachesTheCallerAndKeepsTheLastCommit) {
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, 2);
    TempDir dir;
    EveryKindModel m;
    CGModel& model = m.model;
    model.serializeModel(dir.path().wstring());
    model.serializeModelAfterScriv(dir.path().wstring());
    const std::string committed = dumpOf(storeIn(dir));

    // A port whose source block does not exist fails the first pass after it
    // has replaced the stored model.
    auto* broken = new StoredGraphicalBlock(L"Broken");
    Port* port = broken->addDataInputPort(std::make_unique<Port>());
    port->setCGModel(&model);
    port->setGrSrcPortIdx(1, 99, 0);
    addBlock(model, broken);
    EXPECT_EQ(messages::Model::IndexOutOfRange,
              diagnosticOf([&] { model.serializeModel(dir.path().wstring()); }));
    EXPECT_EQ(committed, dumpOf(storeIn(dir)));
}

// An empty directory is the current one.
TEST(CGModelSerialize, ScriptMethodsWriteTheDescriptorInTheNamedOrCurrentDirectory) {
    PlexoInitialize_velcg();
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, 2);
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    const auto previous = std::filesystem::current_path();
    for (const bool current : {false, true}) {
        TempDir dir;
        std::filesystem::current_path(current ? dir.path() : previous);
        const tuvArrayPtr directory = tuvArray::fromUtf8(current ? "" : dir.path().string());
        {
            EveryKindModel m;
            client.callMethod(m.model.makeRef(), "serializeModel", {directory});
            client.callMethod(m.model.makeRef(), "serializeModelAfterScriv", {directory});
        }
        std::filesystem::current_path(previous);
        EXPECT_EQ(expectedDump(2), dumpOf(storeIn(dir))) << (current ? "current directory" : "named");
    }
}

} // namespace
