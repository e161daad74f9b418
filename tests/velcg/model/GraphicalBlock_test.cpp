#include "velcg/GraphicalBlock.hpp"

#include <gtest/gtest.h>
#include <sstream>

#include "CG/DataInterface.hpp"
#include "DiagnosticTesting.hpp"
#include "StoreRows.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/GraphicalBlock.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/State.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredParameter.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

// An implementation that records its destruction and the calls it gets.
struct ProbeBlock : StoredGraphicalBlock {
    explicit ProbeBlock(bool* destroyed) : StoredGraphicalBlock(L"probe"), destroyed_(destroyed) {}
    ~ProbeBlock() override { *destroyed_ = true; }
    void initializeCodegenInfo() override { ++initialized; }
    int initialized = 0;
    bool* destroyed_;
};

std::string narrow(const std::wstring& w) { return std::string(w.begin(), w.end()); }

// The queries scripts read are listed in VelCGPackage_test.cpp.
TEST(GraphicalBlock, ForwardsTheOtherQueriesAndOwnsItsImplementation) {
    bool destroyed = false;
    {
        auto* impl = new ProbeBlock(&destroyed);
        impl->setCompactSID(L"1");
        impl->setBlockPath(L"m/Gain1");
        impl->setIsReduced(true);
        impl->setIsDataStoreMemory(true);
        impl->addDataOutputPort(std::make_unique<Port>());
        CGModel model;
        impl->setCGModel(&model);
        GraphicalBlock b(impl);
        std::ostringstream all;
        all << narrow(b.getCompactSID()) << " " << narrow(b.getBlockPath()) << " " << b.isReduced()
            << b.getNumDataOutputPorts() << b.isInport() << b.isOutport() << b.isSubsystem()
            << b.isDataStoreMemory();
        EXPECT_EQ("1 m/Gain1 110001", all.str());
        EXPECT_EQ(&impl->getDataOutputPorts(), &b.getDataOutputPorts());
        EXPECT_EQ(&model, b.getCGModel());
        EXPECT_EQ(impl, b.getImpl());
        b.initializeCodegenInfo();
        EXPECT_EQ(1, impl->initialized);
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([] { GraphicalBlock b(nullptr); }));
}

// The names of the three kinds show in the serialized dumps.
TEST(GraphicalBlock, VirtualityOutsideTheKindsHasNoName) {
    for (int value : {3, -1})
        EXPECT_STREQ("", GraphicalBlock::getStringForBlockVirtuality(static_cast<BlockVirtuality>(value)));
}

TEST(GraphicalBlock, ListsBecomeColumnCellArraysOfElementHandles) {
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    auto* impl = new StoredGraphicalBlock(L"b");
    GraphicalBlock empty(new StoredGraphicalBlock(L"e"));
    auto none = empty.getParametersAsTuvArray();
    EXPECT_EQ(tuvClass::Cell, none->classId());
    EXPECT_EQ(0u, none->rows());
    EXPECT_EQ(1u, none->cols());

    Parameter* k =
        impl->addParameter(std::unique_ptr<Parameter>(factory->createParameter(new StoredParameter(L"K"))));
    Parameter* plain = impl->addParameter(std::make_unique<Parameter>(new StoredParameter(L"plain")));
    impl->addDiscreteState(std::unique_ptr<DataInterfaceRecord>(
        factory->createDataInterfaceRecord(new StoredDataInterfaceRecord())));
    DataInterfaceRecord* dw1 = impl->addDWork(std::unique_ptr<DataInterfaceRecord>(
        factory->createDataInterfaceRecord(new StoredDataInterfaceRecord())));
    DataInterfaceRecord* dw2 = impl->addDWork(std::unique_ptr<DataInterfaceRecord>(
        factory->createDataInterfaceRecord(new StoredDataInterfaceRecord())));
    GraphicalBlock block(impl);

    auto params = block.getParametersAsTuvArray();
    ASSERT_EQ(2u, params->rows());
    EXPECT_EQ(1u, params->cols());
    EXPECT_EQ(dynamic_cast<vel::mi::Handle*>(k), params->getCell(0)->handles()[0].get());
    EXPECT_TRUE(params->getCell(1)->isEmpty()) << plain->getName() << " is not script-visible";
    EXPECT_EQ(1u, block.getDiscreteStatesAsTuvArray()->rows());
    auto dworks = block.getDWorksAsTuvArray();
    ASSERT_EQ(2u, dworks->rows());
    EXPECT_EQ(dynamic_cast<vel::mi::Handle*>(dw1), dworks->getCell(0)->handles()[0].get());
    EXPECT_EQ(dynamic_cast<vel::mi::Handle*>(dw2), dworks->getCell(1)->handles()[0].get());
}

// A model whose root subsystem holds one block with two data output ports.
struct SourceModel {
    CGModel model;
    Port* out1 = nullptr;
    SourceModel() {
        auto* impl = new StoredGraphicalBlock(L"src");
        impl->addDataOutputPort(std::make_unique<Port>());
        out1 = impl->addDataOutputPort(std::make_unique<Port>());
        auto root = std::make_unique<GraphicalSubsystem>();
        root->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl));
        model.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(root));
    }
};

// A block whose serialization fails once its record and its first port are
// written, inside the caller's own transaction, leaves nothing of itself:
// the transaction goes on and stores what the caller wrote before and after
// it, row for row as if the block had never been serialized.
TEST(GraphicalBlock, AFailedSerializeLeavesNothingInTheCallersTransaction) {
    SourceModel s;
    auto* impl = new StoredGraphicalBlock(L"broken");
    impl->addDataInputPort(std::make_unique<Port>());
    Port* unresolvable = impl->addDataInputPort(std::make_unique<Port>());
    unresolvable->setCGModel(&s.model);
    unresolvable->setGrSrcPortIdx(0, 7, 0); // the subsystem has one block
    GraphicalBlock broken(impl);
    GraphicalBlock& good = *s.model.getBlockHierarchyMap()->getSubsystems()[0]->getBlocks()[0];
    testing_support::TempDir dir;
    const auto rows = [&](const char* file, bool withBroken) {
        {
            coder::Repository repository(dir / file);
            coder::Transaction transaction(repository);
            good.serialize(repository);
            if (withBroken) {
                EXPECT_EQ(messages::Model::IndexOutOfRange,
                          diagnosticOf([&] { broken.serialize(repository); }));
            }
            good.serialize(repository);
            transaction.commit();
        }
        return testing_support::rowCounts(dir / file);
    };
    EXPECT_EQ(rows("without.strata", false), rows("with.strata", true));
}

TEST(Port, GraphicalSourceResolvesThroughTheHierarchyMap) {
    SourceModel s;
    Port p;
    EXPECT_EQ(nullptr, p.getGraphicalSource()) << "no model";
    p.setCGModel(&s.model);
    EXPECT_EQ(nullptr, p.getGraphicalSource()) << "indices never set";
    p.setGrSrcPortIdx(0, 0, 2);
    EXPECT_EQ(nullptr, p.getGraphicalSource()) << "port index equal to the number of outputs";
    EXPECT_EQ(nullptr, p.getGraphicalSourceSerialize()) << "nothing cached";
    p.setGrSrcPortIdx(0, 0, 1);
    EXPECT_EQ(s.out1, p.getGraphicalSource()) << "a later call tries again";
    EXPECT_EQ(s.out1, p.getGraphicalSourceSerialize());
    p.setGrSrcPortIdx(0, 0, 0);
    EXPECT_EQ(s.out1, p.getGraphicalSource()) << "the cache is kept";

    for (auto [sub, blk] : {std::pair{1, 0}, {0, 1}, {-2, 0}, {0, -1}}) {
        Port q;
        q.setCGModel(&s.model);
        q.setGrSrcPortIdx(sub, blk, 0);
        EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { q.getGraphicalSource(); }))
            << sub << "," << blk;
    }
    Port negativePort;
    negativePort.setCGModel(&s.model);
    negativePort.setGrSrcPortIdx(0, 0, -1);
    EXPECT_EQ(nullptr, negativePort.getGraphicalSource());
}

TEST(Port, BaseSettersDoNothingAndRegionsAreOwned) {
    Port p;
    p.setConnected(true);
    p.setVelName(L"x");
    Port other;
    p.setGraphicalSource(&other);
    Region stray;
    p.setRegions({&stray});
    EXPECT_FALSE(p.getConnected());
    EXPECT_EQ(L"", p.getVelName());
    EXPECT_EQ(nullptr, p.getGraphicalSourceSerialize());
    EXPECT_TRUE(p.getRegions().empty());
    p.addRegion(std::make_unique<Region>());
    EXPECT_EQ(1u, p.getRegions().size());
    EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { p.addRegion(nullptr); }));
}

// The defaults scripts read are listed in VelCGPackage_test.cpp.
TEST(Region, BaseKeepsNoGroundDataAndHoldsDataInterfaceReferences) {
    Region r;
    r.setGroundDataTypeIdx(3);
    r.setGroundLabel(L"g");
    r.setGroundIsComplex(true);
    EXPECT_EQ(-1, r.getGroundDataTypeIdx()) << "the base stores no ground data";
    EXPECT_FALSE(r.getGroundIsComplex());

    CG::DataInterface* a = CG::DataInterface::create({"a", "Variable", "", "double", "a"});
    CG::DataInterface* b = CG::DataInterface::create({"b", "Variable", "", "double", "b"});
    r.setDataInterface(a);
    EXPECT_EQ(2, a->getRefCount());
    {
        Region copy(r);
        EXPECT_EQ(3, a->getRefCount()) << "a copy holds its own reference";
    }
    r.setDataInterface(b);
    EXPECT_EQ(1, a->getRefCount()) << "the previous interface is released";
    EXPECT_EQ(2, b->getRefCount());
    EXPECT_EQ("coder.DataInterface", r.getDataInterfaceAsTuvArray()->className());
    r.setDataInterface(nullptr);
    EXPECT_EQ(1, b->getRefCount());
    a->release();
    b->release();
}

TEST(State, SetDimensionValueChecksTheIndex) {
    State s({2, 3});
    s.setDimensionValue(1, 4);
    EXPECT_EQ((std::vector<int>{2, 4}), s.getDimensions());
    EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { s.setDimensionValue(2, 1); }));
    EXPECT_EQ((std::vector<int>{2, 4}), s.getDimensions());
}

} // namespace
