#include "velcg/Port.hpp"

#include <gtest/gtest.h>

#include "DiagnosticTesting.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Dump.hpp"
#include "coder/descriptor/Port.hpp"
#include "coder/descriptor/Region.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/Region.hpp"
#include "velcg/StoredGraphicalBlock.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;
using testing_support::TempDir;

namespace {

// A model whose root subsystem has `count` blocks of one output port each.
struct Blocks {
    CGModel model;
    std::vector<Port*> outputs;

    explicit Blocks(int count) {
        auto root = std::make_unique<GraphicalSubsystem>();
        for (int i = 0; i < count; ++i) {
            auto* impl = new StoredGraphicalBlock(L"b" + std::to_wstring(i));
            outputs.push_back(impl->addDataOutputPort(std::make_unique<Port>()));
            outputs.back()->setCGModel(&model);
            outputs.back()->setSignalLabel(L"s" + std::to_wstring(i));
            root->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl));
        }
        model.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(root));
    }
};

TEST(Port, GraphicalSourcesFormingACycleAreRefused) {
    Blocks blocks(4);
    blocks.outputs[0]->setGrSrcPortIdx(0, 1, 0); // 0 <- 1 <- 2 <- 1
    blocks.outputs[1]->setGrSrcPortIdx(0, 2, 0);
    blocks.outputs[2]->setGrSrcPortIdx(0, 1, 0);
    blocks.outputs[3]->setGrSrcPortIdx(0, 3, 0); // its own source
    TempDir dir;
    coder::Repository repository(dir / "ports.strata");
    coder::Transaction transaction(repository);
    for (const Port* port : blocks.outputs)
        EXPECT_EQ(kCyclicSourceId, diagnosticOf([&] { port->serialize(repository, true); }))
            << vel::i18n::toUtf8(port->getSignalLabel());
}

TEST(Port, LongSourceChainIsWrittenWithoutRecursion) {
    // Deeper than a recursive walk of a small thread stack would allow.
    constexpr int kLength = 20000;
    Blocks blocks(kLength);
    for (int i = 0; i + 1 < kLength; ++i) blocks.outputs[i]->setGrSrcPortIdx(0, i + 1, 0);
    TempDir dir;
    coder::Repository repository(dir / "ports.strata");
    coder::Transaction transaction(repository);
    coder::descriptor::Port port = blocks.outputs[0]->serialize(repository, false);
    for (int i = 1; i < kLength; ++i) port = port.getGraphicalSource();
    EXPECT_EQ(u"s" + vel::i18n::toUString(std::to_string(kLength - 1)), port.getSignalLabel());
    EXPECT_TRUE(port.getGraphicalSource().isNull());
}

struct GroundedRegion : Region {
    std::wstring getGroundLabel() const override { return L"ground"; }
};

TEST(Region, SerializesGroundLabelSourceAndDimensions) {
    TempDir dir;
    coder::Repository repository(dir / "regions.strata");
    coder::Transaction transaction(repository);
    GroundedRegion region;
    region.setSource("model_in.u[2]");
    region.setDimensions({3, 4});
    EXPECT_EQ(
        "Region\n"
        "  GroundLabel: \"ground\"\n"
        "  Source: \"model_in.u[2]\"\n"
        "  Dimensions: [3, 4]\n",
        coder::descriptor::dumpText(region.serialize(repository)));
}

TEST(Region, DimensionsAndCopiesStayTheirOwn) {
    // Each value set once, then after another and back, reads as given;
    // the scalar [1] is the default too.
    const std::vector<std::vector<int>> values = {{1}, {2, 3}, {}, {1, 1}, {0}, {-1}, {1}};
    for (const auto& first : values)
        for (const auto& second : values) {
            Region r;
            r.setDimensions(first);
            EXPECT_EQ(first, r.getDimensions());
            r.setDimensions(second);
            EXPECT_EQ(second, r.getDimensions());
        }

    Region original;
    original.setSource("u");
    original.setOffset(2);
    original.setFunctionArgumentIdx(1);
    original.setDimensions({4, 5});
    Region copy(original);
    Region assigned;
    assigned = original;
    original.setDimensions({1});
    original.setSource("v");
    for (const Region* r : {&copy, &assigned}) {
        EXPECT_EQ((std::vector<int>{4, 5}), r->getDimensions()) << "a copy keeps its own dimensions";
        EXPECT_EQ("u", r->getSource());
        EXPECT_EQ(2, r->getOffset());
        EXPECT_EQ(1, r->getFunctionArgumentIdx());
    }
    EXPECT_EQ((std::vector<int>{1}), original.getDimensions());
    Region scalarCopy(original);
    scalarCopy.setDimensions({7});
    EXPECT_EQ((std::vector<int>{1}), original.getDimensions());
    assigned = scalarCopy;
    EXPECT_EQ((std::vector<int>{7}), assigned.getDimensions());
    const Region& self = assigned;
    assigned = self;
    EXPECT_EQ((std::vector<int>{7}), assigned.getDimensions()) << "assigning a region to itself keeps it";
}

TEST(Port, SignalLabelReadsAsLastSet) {
    Port p;
    EXPECT_EQ(L"", p.getSignalLabel());
    for (const wchar_t* label : {L"speed", L"", L"\u4e2d", L"", L""}) {
        p.setSignalLabel(label);
        EXPECT_EQ(label, p.getSignalLabel());
    }
}

} // namespace
