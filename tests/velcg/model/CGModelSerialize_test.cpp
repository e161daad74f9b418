// Serialization of the whole model into the code descriptor store: the
// records written at each level of the switch, the background pass and its
// join points, and failures.
#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

#include "CG/DataInterface.hpp"
#include "DiagnosticTesting.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Dump.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/CoderDataGroup.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/Features.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/State.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"
#include "velcg/System.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;
using testing_support::TempDir;

namespace {

// A gate one thread waits at until another opens it; the waiting side
// announces its arrival so that the other can act while it waits.
class Gate {
public:
    void arriveAndWait() {
        std::unique_lock<std::mutex> lock(mutex_);
        arrived_ = true;
        changed_.notify_all();
        changed_.wait(lock, [this] { return open_; });
    }
    void waitForArrival() {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return arrived_; });
    }
    void open() {
        std::lock_guard<std::mutex> lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool arrived_ = false;
    bool open_ = false;
};

class NamedModel : public CGModel {
public:
    std::wstring getName() const override { return L"plant"; }
    std::wstring getKordelVersion() const override { return L"9.1"; }
};

// Its first pass stops in getName until the gate opens.
class GatedModel : public NamedModel {
public:
    explicit GatedModel(Gate& gate) : gate_(gate) {}
    ~GatedModel() override { waitForSerialization(); }
    std::wstring getName() const override {
        gate_.arriveAndWait();
        passedGate = true;
        return NamedModel::getName();
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

class NamedSystem : public System {
public:
    explicit NamedSystem(std::string name) : name_(std::move(name)) {}
    std::string getName() const override { return name_; }

private:
    std::string name_;
};

struct Group : CoderDataGroup {
    Group(const std::string& name, const CGModel* model) : CoderDataGroup(name, model) {}
    void WriteToBriskFile() const override {}
};

struct DataInterfaceRef {
    explicit DataInterfaceRef(CG::DataInterface::Description d)
        : p(CG::DataInterface::create(std::move(d))) {}
    ~DataInterfaceRef() { p->release(); }
    CG::DataInterface* p;
};

Port* addPort(Port* port, const CGModel& model, const std::wstring& label, const char* source,
              const CG::DataInterface* dataInterface) {
    port->setCGModel(&model);
    port->setSignalLabel(label);
    auto region = std::make_unique<Region>();
    region->setSource(source);
    region->setDimensions({2});
    region->setDataInterface(dataInterface);
    port->addRegion(std::move(region));
    return port;
}

StoredGraphicalBlock* block(const CGModel& model, const wchar_t* name, const wchar_t* sid,
                            const wchar_t* path, const wchar_t* type) {
    auto* impl = new StoredGraphicalBlock(name);
    impl->setVelName(std::wstring(name) + L" block");
    impl->setSID(sid);
    impl->setBlockPath(path);
    impl->setType(type);
    impl->setCGModel(&model);
    return impl;
}

// One model holding every kind of element that is serialized:
//   systems "plant_step" (called by In1) and "ctrl_step";
//   root inputs u_speed and one named by its variable group member;
//   subsystem "plant" [In1, Gain, Sub] and its child "Sub" [Delay];
//   Delay's input is fed by Gain's output, itself fed by In1's output;
//   async-queue blocks: a virtual bus whose leaf is a bus of an enumeration.
// The async-queue blocks name "plant/Gain" and "plant/Sub/Delay" as actual
// sources, the nested leaf "plant/In1" (a leaf's leaf, so never recorded).
void fillModel(CGModel& model, std::unique_ptr<GraphicalBlockIF> extraBlock = nullptr) {
    DataInterfaceRef speed({"plant_in.speed", "StructElement", "plant_in", "speed_type", "In1"});
    DataInterfaceRef scaled({"plant_out.scaled", "Variable", "", "speed_type", "Gain"});
    DataInterfaceRef state({"plant_state.delay", "StructElement", "plant_state", "speed_type", "Delay"});

    auto inputs = std::make_unique<VelCGType>("plant_inputs");
    inputs->addMember(std::make_unique<CGTypeMember>("u_speed", 1));
    inputs->addMember(std::make_unique<CGTypeMember>("u_load", 1));
    model.addVelCGType(std::move(inputs));
    model.addVelCGType(std::make_unique<VelCGType>("plant_signals"));
    auto inputGroup = std::make_unique<VarGroup>();
    inputGroup->setCGTypeIndex(0);
    model.addVarGroup(std::move(inputGroup));
    auto signalGroup = std::make_unique<VarGroup>(); // the root group of coder group 0
    signalGroup->setSystemIndex(1);
    signalGroup->setCoderGroupIndex(0);
    signalGroup->setCGTypeIndex(1);
    model.addVarGroup(std::move(signalGroup));

    auto root = std::make_unique<StoredGraphicalSubsystem>(L"plant", GraphicalSubsystemType::Root);
    root->setSID(L"plant");
    auto* in1 = block(model, L"In1", L"plant:1", L"plant/In1", L"Inport");
    in1->setIsInport(true);
    Port* in1Out =
        addPort(in1->addDataOutputPort(std::make_unique<Port>()), model, L"speed", "u_speed", speed.p);
    in1Out->setTestPoint(true);
    auto* gain = block(model, L"Gain", L"plant:2", L"plant/Gain", L"Gain");
    gain->setDescription(L"scales \"speed\"");
    addPort(gain->addDataInputPort(std::make_unique<Port>()), model, L"speed", "u_speed", nullptr)
        ->setGrSrcPortIdx(0, 0, 0);
    addPort(gain->addDataOutputPort(std::make_unique<Port>()), model, L"scaled", "plant_out.scaled", scaled.p)
        ->setGrSrcPortIdx(0, 0, 0);
    gain->addDWork(std::make_unique<DataInterfaceRecord>(new StoredDataInterfaceRecord(scaled.p)));
    gain->addDWork(std::make_unique<DataInterfaceRecord>(new StoredDataInterfaceRecord()));
    auto* sub = block(model, L"Sub", L"plant:3", L"plant/Sub", L"SubSystem");
    sub->setIsSubsystem(true);
    sub->setVirtual(BlockVirtuality::Virtual);
    addPort(sub->addControlInputPort(std::make_unique<Port>()), model, L"enable", "enable", speed.p);
    GraphicalBlock* in1Block = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(in1));
    GraphicalBlock* gainBlock = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(gain));
    root->addGraphicalBlock(std::make_unique<GraphicalBlock>(sub));

    auto child = std::make_unique<StoredGraphicalSubsystem>(L"Sub", GraphicalSubsystemType::Atomic);
    child->setVelName(L"Sub subsystem");
    child->setMaskType(L"Filter");
    child->setSID(L"plant:3");
    auto* delay = block(model, L"Delay", L"plant:3:1", L"plant/Sub/Delay", L"UnitDelay");
    delay->setVirtual(BlockVirtuality::PostCompileVirtual);
    addPort(delay->addDataInputPort(std::make_unique<Port>()), model, L"scaled", "plant_out.scaled", scaled.p)
        ->setGrSrcPortIdx(0, 1, 0);
    delay->addContinuousState(std::make_unique<State>(std::vector<int>{2, 1}));
    delay->addDerivative(std::make_unique<State>(std::vector<int>{2}));
    delay->addDiscreteState(std::make_unique<DataInterfaceRecord>(new StoredDataInterfaceRecord(state.p)));
    GraphicalBlock* delayBlock = child->addGraphicalBlock(std::make_unique<GraphicalBlock>(delay));
    if (extraBlock) child->addGraphicalBlock(std::make_unique<GraphicalBlock>(extraBlock.release()));
    model.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(root));
    model.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(child));

    auto* k = new StoredModelParameter(L"K");
    k->setGraphicalSource(gainBlock);
    k->setGraphicalReferences({gainBlock, delayBlock});
    auto kParameter = std::make_unique<ModelParameter>(k);
    auto x0Parameter = std::make_unique<ModelParameter>(new StoredModelParameter(L"x0"));
    gain->addParameter(
        std::make_unique<Parameter>(new StoredParameter(L"Gain", {kParameter.get(), x0Parameter.get()})));
    delay->addParameter(std::make_unique<Parameter>(new StoredParameter(L"InitialCondition")));
    model.addModelParameter(std::move(kParameter));
    model.addModelParameter(std::move(x0Parameter));

    auto step = std::make_unique<NamedSystem>("step");
    step->setIdentifier("plant_step");
    step->addGraphicalCallsite(in1Block);
    model.addSystem(std::move(step));
    auto ctrl = std::make_unique<NamedSystem>("ctrl");
    ctrl->setIdentifier("ctrl_step");
    model.addSystem(std::move(ctrl));

    auto speedInput = std::make_unique<ExternalInput>();
    speedInput->setCGTypeIndex(0);
    speedInput->setIdentifier("u_speed");
    model.addExternalInput(std::move(speedInput));
    auto loadInput = std::make_unique<ExternalInput>();
    loadInput->setIdentifier("not_written");
    loadInput->setVarGroupIndex(0);
    loadInput->setVarGroupMemberIndex(1);
    model.addExternalInput(std::move(loadInput));

    auto bus = std::make_unique<ToAsyncQueueBlock>(new StoredGraphicalBlock(L"Stream"));
    bus->setIsVirtualBus(true);
    bus->setBlockPath(L"plant/Stream");
    bus->setSignalName(L"bus");
    bus->setActSrcBlockPath(L"plant/Gain");
    bus->setDimensions({1});
    auto* inner = new ToAsyncQueueBlock(new StoredGraphicalBlock(L"inner"));
    inner->setIsNVBus(true);
    inner->setActSrcBlockPath(L"plant/Sub/Delay");
    inner->setActSrcDWorkName(L"delay");
    inner->setNVBusOffset(16);
    auto* gear = new ToAsyncQueueBlock(new StoredGraphicalBlock(L"gear"));
    gear->setEnumLabels({L"Park", L"Drive"});
    gear->setEnumValues({0, 3});
    gear->setDimensions({2, 1});
    gear->setActSrcBlockPath(L"plant/In1");
    inner->addLeafElement(gear);
    bus->addLeafElement(inner);
    model.addTAQBlock(std::move(bus));

    model.setOverwritableIOPair(2, 0);
    model.setOverwritableIOPair(0, 1);

    auto signals = std::make_unique<Group>("Signals", &model);
    signals->setAsStructure(CoderDataGroup::AsStructure::Standalone);
    signals->setStructureTypeNameRule("$N_signals");
    model.appendCoderDataGroup(std::move(signals));
    auto self = std::make_unique<Group>("Self", &model);
    self->setSelfGroup(true);
    self->setAsStructure(CoderDataGroup::AsStructure::InSelf);
    self->setRootGroupTypeName("plant_self");
    model.appendCoderDataGroup(std::move(self));
    auto none = std::make_unique<Group>("Loose", &model);
    none->setAsStructure(CoderDataGroup::AsStructure::None);
    model.appendCoderDataGroup(std::move(none));

    model.setSharedCodeManagerPath(L"/shared/code");
}

std::filesystem::path storeIn(const TempDir& dir) { return dir / CGModel::kCodeDescriptorFileName; }

std::string dumpOf(const std::filesystem::path& file) {
    coder::RepositoryOptions options;
    options.access = coder::RepositoryOptions::Access::ReadOnly;
    coder::Repository repository(file, options);
    return coder::descriptor::dumpText(repository);
}

bool holdsModel(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file)) return false;
    return diagnosticOf([&] { dumpOf(file); }) != "coder:descriptor:NoModel";
}

// The expected dump at one level. Each line of the golden file starts with
// the levels it belongs to ("1234", " 2 4", ...) and a '|'.
std::string expectedDump(int level) {
    std::ifstream in(std::filesystem::path(__FILE__).replace_filename("CGModelSerialize_golden.txt"));
    EXPECT_TRUE(in.good()) << "the golden file beside " << __FILE__;
    std::string line, out;
    while (std::getline(in, line))
        if (line.size() >= 5 && line[4] == '|' && line.find(static_cast<char>('0' + level)) < 4)
            out += line.substr(5) + "\n";
    return out;
}

// Both passes, as a code generator runs them; the model is destroyed before
// the file is read, which waits for a background pass.
std::string serializeAt(int level, const TempDir& dir) {
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, level);
    {
        NamedModel model;
        fillModel(model);
        model.serializeModel(dir.path().wstring());
        model.serializeModelAfterScriv(dir.path().wstring());
        EXPECT_EQ(level == 3, model.isTAQBlockActualSrc(L"plant/Sub/Delay")) << level;
        EXPECT_FALSE(model.isTAQBlockActualSrc(L"plant/In1")) << "a leaf's leaf is not recorded";
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
            GatedModel model(gate);
            fillModel(model);
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
    auto model = std::make_unique<NamedModel>();
    fillModel(*model, std::make_unique<GatedBlock>(gate));
    model->serializeModel(dir.path().wstring());
    gate.waitForArrival();
    std::thread opener([&] { gate.open(); });
    // The pass still reads the blocks that the destructor deletes.
    model.reset();
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
        NamedModel model;
        model.serializeModel(missing);
        model.serializeModel(std::wstring(1, 0xD800)); // not text: fails too, but the first failure is kept
        EXPECT_EQ("coder:Repository:CannotOpen",
                  diagnosticOf([&] { model.serializeModelAfterScriv(missing); }));
        // Raised once: this call starts the second pass, which fails as well.
        model.serializeModelAfterScriv(missing);
        EXPECT_TRUE(reported.empty());
    }
    ASSERT_EQ(1u, reported.size());
    EXPECT_EQ(0u, reported[0].find(std::string(kSerializationFailedId) + " "));
    EXPECT_NE(std::string::npos, reported[0].find("coder:Repository:CannotOpen"));
}

TEST(CGModelSerialize, SynchronousFailureReachesTheCallerAndKeepsTheLastCommit) {
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, 2);
    TempDir dir;
    NamedModel model;
    fillModel(model);
    model.serializeModel(dir.path().wstring());
    model.serializeModelAfterScriv(dir.path().wstring());
    const std::string committed = dumpOf(storeIn(dir));

    // A port whose source block does not exist fails the first pass after it
    // has replaced the stored model.
    auto* broken = new StoredGraphicalBlock(L"Broken");
    Port* port = broken->addDataInputPort(std::make_unique<Port>());
    port->setCGModel(&model);
    port->setGrSrcPortIdx(1, 99, 0);
    model.getBlockHierarchyMap()->getSubsystems()[1]->addGraphicalBlock(
        std::make_unique<GraphicalBlock>(broken));
    EXPECT_EQ(kIndexOutOfRangeId, diagnosticOf([&] { model.serializeModel(dir.path().wstring()); }));
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
            NamedModel model;
            fillModel(model);
            client.callMethod(model.makeRef(), "serializeModel", {directory});
            client.callMethod(model.makeRef(), "serializeModelAfterScriv", {directory});
        }
        std::filesystem::current_path(previous);
        EXPECT_EQ(expectedDump(2), dumpOf(storeIn(dir))) << (current ? "current directory" : "named");
    }
}

} // namespace
