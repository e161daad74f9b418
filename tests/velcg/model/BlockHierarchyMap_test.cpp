#include "velcg/BlockHierarchyMap.hpp"

#include <gtest/gtest.h>
#include <stdexcept>

#include "DiagnosticTesting.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

struct Kind {
    bool inport = false, outport = false, subsystem = false, dsm = false, reduced = false;
};

std::unique_ptr<GraphicalBlock> block(const wchar_t* name, Kind k = {}) {
    auto* impl = new StoredGraphicalBlock(name);
    impl->setIsInport(k.inport);
    impl->setIsOutport(k.outport);
    impl->setIsSubsystem(k.subsystem);
    impl->setIsDataStoreMemory(k.dsm);
    impl->setIsReduced(k.reduced);
    return std::make_unique<GraphicalBlock>(impl);
}

// A block whose kind and reduction queries fail while `failing` is set, as
// an implementation object of the modelling environment may.
struct FailingBlock : StoredGraphicalBlock {
    explicit FailingBlock(bool* failing) : StoredGraphicalBlock(L"failing"), failing_(failing) {}
    bool isInport() const override { return check(); }
    bool isReduced() const override { return check() || true; }
    bool check() const {
        if (*failing_) throw std::runtime_error("query failed");
        return false;
    }
    bool* failing_;
};

std::string names(const std::vector<GraphicalBlock*>& blocks) {
    std::string s;
    for (auto* b : blocks) {
        const std::wstring name = b->getName();
        s += (s.empty() ? "" : ",") + std::string(name.begin(), name.end());
    }
    return s;
}

TEST(GraphicalSubsystem, BlocksGoIntoTheFirstMatchingKindList) {
    StoredGraphicalSubsystem s(L"S", GraphicalSubsystemType::Atomic);
    s.addGraphicalBlock(block(L"in", {true}));
    s.addGraphicalBlock(block(L"inAndSub", {true, false, true}));
    s.addGraphicalBlock(block(L"out", {false, true, false, true}));
    s.addGraphicalBlock(block(L"sub", {false, false, true, true}));
    s.addGraphicalBlock(block(L"dsm", {false, false, false, true}));
    s.addGraphicalBlock(block(L"plain"));
    EXPECT_EQ("in,inAndSub", names(s.getInputPortBlocks()));
    EXPECT_EQ("out", names(s.getOutputPortBlocks()));
    EXPECT_EQ("sub", names(s.getSubsystemBlocks()));
    EXPECT_EQ("dsm", names(s.getDataStoreBlocks()));
    EXPECT_EQ("in,inAndSub,out,sub,dsm,plain", names(s.getBlocks()));
    EXPECT_EQ(&s, s.getBlocks()[0]->getParentSubsystem());
}

TEST(GraphicalSubsystem, ManyBlocksKeepTheirOrderInEveryListAcrossFinalize) {
    // Blocks of every kind, many of each, half added before the map is
    // finalized and half after; every list holds its blocks in the order
    // added, and the reduced blocks are every third.
    BlockHierarchyMap map;
    GraphicalSubsystem* root = map.addGraphicalSubsystem(std::make_unique<GraphicalSubsystem>());
    std::string all, inports, outports, subsystems, stores, reduced;
    const auto add = [&](int i) {
        const std::wstring name = L"b" + std::to_wstring(i);
        Kind k;
        k.inport = i % 5 == 1;
        k.outport = i % 5 == 2;
        k.subsystem = i % 5 == 3;
        k.dsm = i % 5 == 4;
        k.reduced = i % 3 == 0;
        root->addGraphicalBlock(block(name.c_str(), k));
        const std::string n = "b" + std::to_string(i);
        for (auto [list, member] : {std::pair{&all, true},
                                    {&inports, k.inport},
                                    {&outports, k.outport},
                                    {&subsystems, k.subsystem},
                                    {&stores, k.dsm},
                                    {&reduced, k.reduced}})
            if (member) *list += (list->empty() ? "" : ",") + n;
    };
    for (int i = 0; i < 600; ++i) add(i);
    for (int i = 0; i < 120; ++i) map.addGraphicalSubsystem(std::make_unique<GraphicalSubsystem>());
    map.finalize();
    EXPECT_EQ(120u, root->getChildSubsystems().size());
    for (int i = 600; i < 1000; ++i) add(i);
    EXPECT_EQ(all, names(root->getBlocks()));
    EXPECT_EQ(inports, names(root->getInputPortBlocks()));
    EXPECT_EQ(outports, names(root->getOutputPortBlocks()));
    EXPECT_EQ(subsystems, names(root->getSubsystemBlocks()));
    EXPECT_EQ(stores, names(root->getDataStoreBlocks()));
    EXPECT_EQ(reduced, names(map.getReducedBlocks()));
    EXPECT_EQ(root->getBlocks()[999], map.getBlockGivenIndices(0, 999));
}

TEST(GraphicalSubsystem, AFailingKindQueryLeavesTheSubsystemUnchanged) {
    bool failing = true;
    GraphicalSubsystem s;
    EXPECT_THROW(s.addGraphicalBlock(std::make_unique<GraphicalBlock>(new FailingBlock(&failing))),
                 std::runtime_error);
    EXPECT_TRUE(s.getBlocks().empty()) << "no block without its kind list";
    failing = false;
    s.addGraphicalBlock(std::make_unique<GraphicalBlock>(new FailingBlock(&failing)));
    EXPECT_EQ(1u, s.getBlocks().size());
}

TEST(GraphicalSubsystem, TypeStringsAndDefaults) {
    const char* expected[] = {"root",    "virtual", "atomic",   "enabled", "trigger", "enabletrigger",
                              "fcncall", "action",  "iterator", "unknown", ""};
    for (int i = 0; i <= 10; ++i)
        EXPECT_STREQ(expected[i],
                     GraphicalSubsystem::getStringForSubsystemType(static_cast<GraphicalSubsystemType>(i)));
    GraphicalSubsystem plain;
    EXPECT_STREQ("unknown", GraphicalSubsystem::getStringForSubsystemType(plain.getType()));
    plain.setMangledPathName("m_Sub");
    EXPECT_EQ("m_Sub", plain.getMangledPathName());
    EXPECT_EQ("m_Sub", plain.getMangledSubsystemPathName());
    EXPECT_EQ(-1, plain.getNVOwnerSysIdx());
    EXPECT_EQ((std::pair<int, int>{-1, -1}), plain.getSubsystemBlockIndex());
    EXPECT_EQ(nullptr, plain.getSubsystemBlock()) << "no map";
}

// root with 2 subsystem blocks, A with 1, B with 0, C with 0.
struct Hierarchy {
    BlockHierarchyMap map;
    GraphicalSubsystem *root, *a, *b, *c;
    Hierarchy() {
        root = map.addGraphicalSubsystem(
            std::make_unique<StoredGraphicalSubsystem>(L"root", GraphicalSubsystemType::Root));
        a = map.addGraphicalSubsystem(
            std::make_unique<StoredGraphicalSubsystem>(L"A", GraphicalSubsystemType::Atomic));
        b = map.addGraphicalSubsystem(
            std::make_unique<StoredGraphicalSubsystem>(L"B", GraphicalSubsystemType::Virtual));
        c = map.addGraphicalSubsystem(
            std::make_unique<StoredGraphicalSubsystem>(L"C", GraphicalSubsystemType::Enabled));
        root->addGraphicalBlock(block(L"In1", {true}));
        root->addGraphicalBlock(block(L"A", {false, false, true}));
        root->addGraphicalBlock(block(L"B", {false, false, true, false, true}));
        a->addGraphicalBlock(block(L"C", {false, false, true}));
        c->addGraphicalBlock(block(L"Gain", {false, false, false, false, true}));
        a->setSubsystemBlockIndex({0, 1});
        c->setSubsystemBlockIndex({1, 0});
    }
};

TEST(BlockHierarchyMap, FinalizeLinksChildrenBreadthFirst) {
    Hierarchy h;
    h.map.finalize();
    EXPECT_EQ((std::vector<GraphicalSubsystem*>{h.a, h.b}), h.root->getChildSubsystems());
    EXPECT_EQ((std::vector<GraphicalSubsystem*>{h.c}), h.a->getChildSubsystems());
    EXPECT_TRUE(h.b->getChildSubsystems().empty());
    EXPECT_EQ(&h.map, h.c->getBlockHierarchyMap());
    EXPECT_EQ(h.root->getBlocks()[1], h.a->getSubsystemBlock());
    EXPECT_EQ(h.a->getBlocks()[0], h.c->getSubsystemBlock());
    EXPECT_EQ(nullptr, h.b->getSubsystemBlock()) << "(-1, -1) names no block";
}

TEST(BlockHierarchyMap, FinalizeRefusesMissingChildrenBeforeLinkingAny) {
    BlockHierarchyMap map;
    GraphicalSubsystem* root = map.addGraphicalSubsystem(std::make_unique<GraphicalSubsystem>());
    GraphicalSubsystem* a = map.addGraphicalSubsystem(std::make_unique<GraphicalSubsystem>());
    root->addGraphicalBlock(block(L"A", {false, false, true}));
    a->addGraphicalBlock(block(L"B", {false, false, true})); // names a third subsystem the map lacks
    EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { map.finalize(); }));
    EXPECT_TRUE(root->getChildSubsystems().empty()) << "the root is not linked when a later subsystem fails";
    map.addGraphicalSubsystem(std::make_unique<GraphicalSubsystem>());
    map.finalize();
    EXPECT_EQ((std::vector<GraphicalSubsystem*>{a}), root->getChildSubsystems());
    GraphicalSubsystem loose;
    loose.addGraphicalBlock(block(L"A", {false, false, true}));
    EXPECT_EQ(messages::Model::NoModel, diagnosticOf([&] { loose.finalize(1); }));
}

TEST(BlockHierarchyMap, BlockLookupAndReducedBlocks) {
    Hierarchy h;
    EXPECT_EQ(h.root->getBlocks()[2], h.map.getBlockGivenIndices(0, 2));
    EXPECT_EQ(nullptr, h.map.getBlockGivenIndices(0, 3));
    EXPECT_EQ(nullptr, h.map.getBlockGivenIndices(4, 0));
    EXPECT_EQ(nullptr, h.map.getBlockGivenIndices(1, static_cast<std::size_t>(-1)));
    BlockHierarchyMap empty;
    EXPECT_EQ(nullptr, empty.getBlockGivenIndices(0, 0));
    EXPECT_TRUE(empty.getReducedBlocks().empty());

    EXPECT_EQ("B,Gain", names(h.map.getReducedBlocks()));
    auto extra = std::make_unique<GraphicalSubsystem>();
    extra->addGraphicalBlock(block(L"late", {false, false, false, false, true}));
    h.map.addGraphicalSubsystem(std::move(extra));
    EXPECT_EQ("B,Gain,late", names(h.map.getReducedBlocks())) << "adding a subsystem empties the cache";
}

TEST(BlockHierarchyMap, AFailingReductionQueryCachesNothing) {
    bool failing = false;
    BlockHierarchyMap map;
    GraphicalSubsystem* root = map.addGraphicalSubsystem(std::make_unique<GraphicalSubsystem>());
    root->addGraphicalBlock(block(L"first", {false, false, false, false, true}));
    root->addGraphicalBlock(std::make_unique<GraphicalBlock>(new FailingBlock(&failing)));
    failing = true;
    EXPECT_THROW(map.getReducedBlocks(), std::runtime_error);
    failing = false;
    EXPECT_EQ("first,failing", names(map.getReducedBlocks())) << "not the part found before the failure";
}

TEST(BlockHierarchyMap, SetSubsystemsReplacesButRefusesCurrentOnes) {
    Hierarchy h;
    EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { h.map.setSubsystems({h.a}); }));
    EXPECT_EQ(4u, h.map.getSubsystems().size());
    auto* fresh = new StoredGraphicalSubsystem(L"new", GraphicalSubsystemType::Root);
    EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { h.map.setSubsystems({fresh, fresh}); }));
    h.map.setSubsystems({fresh});
    EXPECT_EQ((std::vector<GraphicalSubsystem*>{fresh}), h.map.getSubsystems());
    EXPECT_EQ(&h.map, fresh->getBlockHierarchyMap());
}

} // namespace
