#include "velcg/ToAsyncQueueBlock.hpp"

#include <gtest/gtest.h>

#include "DiagnosticTesting.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/StoredGraphicalBlock.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

// Counts live records so that tests can tell which leaves were deleted.
struct CountedBlock : StoredGraphicalBlock {
    static int live;
    explicit CountedBlock(const wchar_t* name) : StoredGraphicalBlock(name) { ++live; }
    ~CountedBlock() override { --live; }
};
int CountedBlock::live = 0;

ToAsyncQueueBlock* record(const wchar_t* name) { return new ToAsyncQueueBlock(new CountedBlock(name)); }

// The record's fields show in VelCGPackage_test.cpp; its nested leaves are
// those of the every-kind model.
TEST(ToAsyncQueueBlock, OwnBlockPathDoesNotHideTheGraphicalBlocks) {
    ToAsyncQueueBlock b(new StoredGraphicalBlock(L"TAQ"));
    b.setBlockPath(L"m/Scope");
    EXPECT_EQ(L"m/Scope", b.getBlockPathTAQ());
    EXPECT_EQ(L"", b.getBlockPath()) << "the graphical block's own path is unaffected";
    EXPECT_EQ(L"TAQ", b.getName());
}

TEST(ToAsyncQueueBlock, SetLeafElementsDeletesDroppedLeavesAndRefusesBadLists) {
    CountedBlock::live = 0;
    {
        ToAsyncQueueBlock bus(new CountedBlock(L"bus"));
        ToAsyncQueueBlock* a = record(L"a");
        ToAsyncQueueBlock* b = record(L"b");
        bus.addLeafElement(a);
        bus.addLeafElement(b);
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { bus.addLeafElement(a); }));
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { bus.addLeafElement(&bus); }));
        EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { bus.addLeafElement(nullptr); }));
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { bus.setLeafElements({b, b}); }));
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { bus.setLeafElements({&bus}); }));
        // The bus holds a: made a leaf of a, it would own itself.
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { a->addLeafElement(&bus); }));
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { a->setLeafElements({&bus}); }));
        EXPECT_EQ(3, CountedBlock::live) << "refused lists change nothing";

        ToAsyncQueueBlock* c = record(L"c");
        bus.setLeafElements({b, c});
        EXPECT_EQ(3, CountedBlock::live) << "a is deleted, c is taken over";
        EXPECT_EQ((std::vector<ToAsyncQueueBlock*>{b, c}), bus.getLeafElements());
    }
    EXPECT_EQ(0, CountedBlock::live);
}

} // namespace
