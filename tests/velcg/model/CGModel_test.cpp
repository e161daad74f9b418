#include "velcg/CGModel.hpp"

#include <gtest/gtest.h>
#include <stdexcept>

#include "CG/DataInterface.hpp"
#include "DiagnosticTesting.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/ChildCoderDataGroup.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"
#include "velcg/System.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

// Counts live instances, to check who deletes what.
struct CountedParameter : StoredModelParameter {
    static int live;
    CountedParameter() { ++live; }
    ~CountedParameter() override { --live; }
};
int CountedParameter::live = 0;

std::unique_ptr<ModelParameter> countedParameter() {
    return std::make_unique<ModelParameter>(new CountedParameter());
}

TEST(CGModel, NewModelIsEmptyWithDefaultAttributes) {
    CGModel m;
    EXPECT_TRUE(m.getSystems().empty());
    EXPECT_TRUE(m.getVelCGTypes().empty());
    EXPECT_TRUE(m.getVarGroups().empty());
    EXPECT_TRUE(m.getTAQBlocks().empty());
    EXPECT_EQ(0u, m.getNumCoderDataGroups());
    ASSERT_NE(nullptr, m.getBlockHierarchyMap());
    EXPECT_TRUE(m.getBlockHierarchyMap()->getSubsystems().empty());
    EXPECT_EQ(nullptr, m.getSystemForFunction("f"));
    EXPECT_FALSE(m.isTAQBlockActualSrc(L"m/Gain"));
    EXPECT_EQ(L"", m.getName());
    EXPECT_EQ(-1, m.getMaxMultiWordBits());
    EXPECT_FALSE(m.getIsCompactFilePackaging());
    EXPECT_EQ(nullptr, m.getStringMap());
    EXPECT_EQ(-1, m.getOverwritableOutputPort(0));
    EXPECT_FALSE(m.hasWarnedAboutQuaySFcnHeaderFileIgnore());
    EXPECT_EQ("getDWork", m.getCPPConfig().getDWorkGetMethodName());
    EXPECT_EQ("setDWork", m.getCPPConfig().getDWorkSetMethodName());
    EXPECT_EQ("getBlockSignals", m.getCPPConfig().getBlockSignalsGetMethodName());
    EXPECT_EQ("setBlockSignals", m.getCPPConfig().getBlockSignalsSetMethodName());
    EXPECT_FALSE(m.getCPPConfig().isCPPClassGenMode());
}

TEST(CGModel, AddTakesOwnershipAndSetsBackPointers) {
    CGModel m;
    auto input = std::make_unique<ExternalInput>();
    ExternalInput* raw = input.get();
    m.addExternalInput(std::move(input));
    EXPECT_EQ(nullptr, input);
    EXPECT_EQ(&m, raw->getCGModel());
    EXPECT_EQ(raw, m.getExternalInputs().back());

    auto type = std::make_unique<VelCGType>("double");
    VelCGType* t = type.get();
    m.addVelCGType(std::move(type));
    EXPECT_EQ(&m, t->getCGModel());
    auto vt = std::make_unique<VelType>();
    VelType* v = vt.get();
    m.addVelType(std::move(vt));
    EXPECT_EQ(&m, v->getCGModel());

    // No duplicate check: the same kind twice gives two entries.
    m.addVarGroup(std::make_unique<VarGroup>());
    m.addVarGroup(std::make_unique<VarGroup>());
    EXPECT_EQ(2u, m.getVarGroups().size());

    EXPECT_EQ(kNullArgumentId, diagnosticOf([&] { m.addSystem(nullptr); }));
    EXPECT_EQ(kNullArgumentId, diagnosticOf([&] { m.addVelCGType(nullptr); }));
}

TEST(CGModel, IndexLookupsReturnNullPastTheEndExceptCoderGroups) {
    CGModel m;
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    auto record = [&] {
        return std::unique_ptr<DataInterfaceRecord>(
            factory->createDataInterfaceRecord(new StoredDataInterfaceRecord()));
    };
    m.addVarGroup(std::make_unique<VarGroup>());
    m.addVelCGType(std::make_unique<VelCGType>());
    m.addModelParameter(countedParameter());
    m.addExternalInput(std::make_unique<ExternalInput>());
    m.addGlobalBlockOutput(record());
    m.addConstantBlockOutput(record());
    m.addExternalBlockOutput(record());
    m.addDWork(record());
    m.addExternalInputDataInterface(record());
    m.addExternalOutputDataInterface(record());
    const CGModel& c = m;
    const struct {
        const char* what;
        const void* atZero;
        const void* atOne;
        const void* listFront;
    } rows[] = {
        {"var group", c.getVarGroup(0), c.getVarGroup(1), c.getVarGroups()[0]},
        {"cg type", c.getVelCGType(0), c.getVelCGType(1), c.getVelCGTypes()[0]},
        {"model parameter", c.getModelParameter(0), c.getModelParameter(1), c.getModelParameters()[0]},
        {"external input", m.getExternalInput(0), m.getExternalInput(1), c.getExternalInputs()[0]},
        {"global output", m.getGlobalBlockOutput(0), c.getGlobalBlockOutput(1), c.getGlobalBlockOutputs()[0]},
        {"constant output", m.getConstantBlockOutput(0), c.getConstantBlockOutput(1),
         c.getConstantBlockOutputs()[0]},
        {"external output", m.getExternalBlockOutput(0), c.getExternalBlockOutput(1),
         c.getExternalBlockOutputs()[0]},
        {"dwork", m.getDWork(0), c.getDWork(1), c.getDWorks()[0]},
        {"input interface", c.getExternalInputDataInterface(0), c.getExternalInputDataInterface(1),
         c.getExternalInputInterfaces()[0]},
        {"output interface", c.getExternalOutputDataInterface(0), c.getExternalOutputDataInterface(1),
         c.getExternalOutputInterfaces()[0]},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(r.listFront, r.atZero) << r.what;
        EXPECT_EQ(nullptr, r.atOne) << r.what;
    }
    try {
        c.getCoderDataGroup(std::size_t{0});
        FAIL() << "expected out_of_range";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ("invalid vector<T> subscript", e.what());
    }
    EXPECT_EQ(nullptr, m.getCoderDataGroup("nope"));
}

TEST(CGModel, CoderDataGroupsArePlacedByNameAndPosition) {
    CGModel m;
    EXPECT_EQ(0u, m.appendCoderDataGroup(std::make_unique<ChildCoderDataGroup>("Fast")));
    EXPECT_EQ(1u, m.appendCoderDataGroup(std::make_unique<ChildCoderDataGroup>("Slow")));
    EXPECT_EQ(2u, m.getNumCoderDataGroups());
    ASSERT_NE(nullptr, m.getCoderDataGroup("Slow"));
    EXPECT_EQ(1, m.getCoderDataGroup("Slow")->getGroupIndex());
    EXPECT_EQ(m.getCoderDataGroup(std::size_t{0}), m.getCoderDataGroup("Fast"));
    EXPECT_THROW(m.getCoderDataGroup(std::size_t{2}), std::out_of_range);

    EXPECT_EQ(kDuplicateNameId,
              diagnosticOf([&] { m.appendCoderDataGroup(std::make_unique<ChildCoderDataGroup>("Fast")); }));
    EXPECT_EQ(kNullArgumentId, diagnosticOf([&] { m.appendCoderDataGroup(nullptr); }));
    EXPECT_EQ(2u, m.getNumCoderDataGroups());

    // The hook of the base class appends nothing.
    ChildCoderDataGroup hooked("Hook");
    m.addCoderDataGroup(&hooked);
    EXPECT_EQ(2u, m.getNumCoderDataGroups());
}

TEST(CGModel, FunctionMapKeepsLastSystemAndSettersOfListsDoNothing) {
    CGModel m;
    m.addSystem(std::make_unique<System>());
    m.addSystem(std::make_unique<System>());
    System* a = m.getSystems()[0];
    System* b = m.getSystems()[1];
    m.addFunctionForSystem("f", a);
    m.addFunctionForSystem("f", b);
    EXPECT_EQ(b, m.getSystemForFunction("f"));

    System other;
    m.setSystems({&other});
    m.setVarGroups({});
    m.setBlockHierarchyMap(nullptr);
    EXPECT_EQ((std::vector<System*>{a, b}), m.getSystems());
    EXPECT_NE(nullptr, m.getBlockHierarchyMap());
}

TEST(CGModel, SetModelParametersReplacesAndOwnsButRefusesCurrentOnes) {
    CountedParameter::live = 0;
    {
        CGModel m;
        m.addModelParameter(countedParameter());
        m.addModelParameter(countedParameter());
        ASSERT_EQ(2, CountedParameter::live);
        ModelParameter* kept = m.getModelParameters()[0];
        EXPECT_EQ(kInvalidOwnershipId, diagnosticOf([&] { m.setModelParameters({kept}); }));
        EXPECT_EQ(2u, m.getModelParameters().size()) << "a refused list changes nothing";

        ModelParameter* fresh = countedParameter().release();
        EXPECT_EQ(kInvalidOwnershipId, diagnosticOf([&] { m.setModelParameters({fresh, fresh}); }));
        m.setModelParameters({fresh});
        EXPECT_EQ(1, CountedParameter::live) << "the previous parameters are deleted";
        EXPECT_EQ(fresh, m.getModelParameter(0));
    }
    EXPECT_EQ(0, CountedParameter::live) << "the model deletes the parameters it took";
}

TEST(CGModel, CompactPackagingFollowsThePackagingFormat) {
    CGModel m;
    const struct {
        int format;
        bool compact;
    } formats[] = {{0, false}, {1, true}, {2, true}, {3, false}, {-1, false}};
    for (const auto& f : formats) {
        m.setFilePackagingFormat(static_cast<FilePackagingFormat>(f.format));
        EXPECT_EQ(f.compact, m.getIsCompactFilePackaging()) << f.format;
    }
}

// The whole model of a small build: two systems, types, groups, inputs, a
// two-level subsystem hierarchy with ports, regions and parameters, and a
// bus streamed to an async queue with nested leaves. Under the sanitizers,
// building and destroying it also checks that nothing leaks or is used
// after free.
struct SmallBuild {
    CGModel m;
    CG::DataInterface* di = nullptr;
    ModelParameter* gainParam = nullptr;
    BlockHierarchyMap* bhm = nullptr;
    GraphicalSubsystem* root = nullptr;
    GraphicalSubsystem* sub = nullptr;
    GraphicalBlock* subBlock = nullptr;
    GraphicalBlock* gain = nullptr;

    SmallBuild() {
        std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
        di = CG::DataInterface::create(
            {"model_Signals.y", "StructElement", "model_Signals", "double", "Gain"});

        for (const char* id : {"root", "sub"}) {
            auto s = std::make_unique<System>();
            s->setIdentifier(id);
            m.addSystem(std::move(s));
        }
        auto real = std::make_unique<VelCGType>("double");
        real->setVelTypeIndex(0);
        m.addVelCGType(std::move(real));
        auto bus = std::make_unique<VelCGType>("model_Bus");
        bus->addMember(std::make_unique<CGTypeMember>("In1", 0));
        bus->addMember(std::make_unique<CGTypeMember>("In2", 0));
        m.addVelCGType(std::move(bus));
        m.addVelType(std::make_unique<VelType>("double"));
        auto group = std::make_unique<VarGroup>();
        group->setCategory(VarGroupEnum::ExternalInput);
        group->setCGTypeIndex(1);
        m.addVarGroup(std::move(group));
        for (int i = 0; i < 2; ++i) {
            auto in = std::make_unique<ExternalInput>();
            in->setVarGroupIndex(0);
            in->setVarGroupMemberIndex(i);
            m.addExternalInput(std::move(in));
        }
        m.addModelParameter(
            std::unique_ptr<ModelParameter>(factory->createModelParameter(new CountedParameter())));
        gainParam = m.getModelParameters()[0];

        // root: In1, Sub (subsystem block), Out1; Sub: Gain with a parameter.
        bhm = m.getBlockHierarchyMap();
        root = bhm->addGraphicalSubsystem(
            std::make_unique<StoredGraphicalSubsystem>(L"root", GraphicalSubsystemType::Root));
        sub = bhm->addGraphicalSubsystem(
            std::make_unique<StoredGraphicalSubsystem>(L"Sub", GraphicalSubsystemType::Atomic));
        auto blockOf = [&](const wchar_t* name, auto&& setup) {
            auto* impl = new StoredGraphicalBlock(name);
            impl->setCGModel(&m);
            setup(*impl);
            return std::make_unique<GraphicalBlock>(impl);
        };
        root->addGraphicalBlock(blockOf(L"In1", [](StoredGraphicalBlock& b) {
            b.setIsInport(true);
            b.addDataOutputPort(std::make_unique<Port>());
        }));
        subBlock = root->addGraphicalBlock(blockOf(L"Sub", [&](StoredGraphicalBlock& b) {
            b.setIsSubsystem(true);
            Port* p = b.addDataInputPort(std::make_unique<Port>());
            p->setCGModel(&m);
            p->setGrSrcPortIdx(0, 0, 0);
        }));
        root->addGraphicalBlock(blockOf(L"Out1", [](StoredGraphicalBlock& b) { b.setIsOutport(true); }));
        gain = sub->addGraphicalBlock(blockOf(L"Gain", [&](StoredGraphicalBlock& b) {
            b.setIsReduced(true);
            Port* out = b.addDataOutputPort(std::make_unique<Port>());
            auto region = std::make_unique<Region>();
            region->setDataInterface(di);
            out->addRegion(std::move(region));
            b.addParameter(
                std::unique_ptr<Parameter>(factory->createParameter(new StoredParameter(L"K", {gainParam}))));
            b.addDWork(std::unique_ptr<DataInterfaceRecord>(
                factory->createDataInterfaceRecord(new StoredDataInterfaceRecord(di))));
        }));
        sub->setSubsystemBlockIndex({0, 1});
        bhm->finalize();
        m.getSystems()[1]->addGraphicalCallsite(subBlock);

        auto taq = std::make_unique<ToAsyncQueueBlock>(new StoredGraphicalBlock(L"Bus"));
        taq->setIsVirtualBus(true);
        auto* inner = new ToAsyncQueueBlock(new StoredGraphicalBlock(L"inner"));
        inner->addLeafElement(new ToAsyncQueueBlock(new StoredGraphicalBlock(L"deep")));
        taq->addLeafElement(inner);
        taq->addLeafElement(new ToAsyncQueueBlock(new StoredGraphicalBlock(L"flat")));
        m.addTAQBlock(std::move(taq));
        m.appendCoderDataGroup(std::make_unique<ChildCoderDataGroup>("Group"));
        di->release(); // the region and the record hold their own references
    }
};

TEST(CGModel, FinalizedHierarchyLinksSubsystemsBlocksAndPorts) {
    SmallBuild b;
    EXPECT_EQ((std::vector<GraphicalSubsystem*>{b.sub}), b.root->getChildSubsystems());
    EXPECT_EQ(b.subBlock, b.sub->getSubsystemBlock());
    EXPECT_EQ(b.root, b.subBlock->getParentSubsystem());
    EXPECT_EQ(1u, b.root->getInputPortBlocks().size());
    EXPECT_EQ(1u, b.root->getOutputPortBlocks().size());
    EXPECT_EQ((std::vector<GraphicalBlock*>{b.gain}), b.bhm->getReducedBlocks());
    const Port* source = b.subBlock->getDataInputPorts()[0]->getGraphicalSource();
    EXPECT_EQ(b.root->getBlocks()[0]->getDataOutputPorts()[0], source);
}

TEST(CGModel, BlocksReachTheModelsParametersInterfacesAndAsyncQueueLeaves) {
    SmallBuild b;
    EXPECT_EQ("In2", b.m.getExternalInput(1)->getRecordIdentifier());
    EXPECT_EQ(b.di, b.gain->getDataOutputPorts()[0]->getRegions()[0]->getDataInterface());
    EXPECT_EQ(b.gainParam, b.gain->getParameters()[0]->getModelParameters()[0]);
    EXPECT_EQ(1u, b.gain->getDWorksAsTuvArray()->rows());
    const auto& leaves = b.m.getTAQBlocks()[0]->getLeafElements();
    ASSERT_EQ(2u, leaves.size());
    EXPECT_EQ(L"deep", leaves[0]->getLeafElements()[0]->getName());
}

TEST(CGModel, DestroyingAWholeModelReleasesWhatItOwnsAndNothingElse) {
    const long interfacesBefore = CG::DataInterface::liveCount();
    CountedParameter::live = 0;
    {
        SmallBuild b;
        EXPECT_EQ(1, CountedParameter::live);
        EXPECT_EQ(interfacesBefore + 1, CG::DataInterface::liveCount());
    }
    EXPECT_EQ(0, CountedParameter::live);
    EXPECT_EQ(interfacesBefore, CG::DataInterface::liveCount())
        << "every data-interface reference is released";
}

} // namespace
