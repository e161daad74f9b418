#include "velcg/ExternalInput.hpp"

#include <gtest/gtest.h>

#include "DiagnosticTesting.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/FPCIOMap.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

// The other defaults are read as one text in ModelClassBindings_test.cpp.
TEST(ExternalInput, FreshInputHasNoStorageClassAndNoRecordIdentifier) {
    ExternalInput in;
    EXPECT_EQ(-1, in.getStorageClass());
    EXPECT_EQ("", in.getRecordIdentifier());
}

TEST(ExternalInput, RecordIdentifierComesFromTheGroupTypeMember) {
    CGModel m;
    auto type = std::make_unique<VelCGType>("model_Inputs");
    type->addMember(std::make_unique<CGTypeMember>("In1", 0));
    type->addMember(std::make_unique<CGTypeMember>("In2", 0));
    m.addVelCGType(std::move(type));
    auto group = std::make_unique<VarGroup>();
    group->setCGTypeIndex(0);
    m.addVarGroup(std::move(group));
    auto in = std::make_unique<ExternalInput>();
    ExternalInput* input = in.get();
    input->setIdentifier("model_In2");
    m.addExternalInput(std::move(in));

    EXPECT_EQ("model_In2", input->getRecordIdentifier()) << "no group: the identifier";
    input->setVarGroupIndex(0);
    input->setVarGroupMemberIndex(1);
    EXPECT_EQ("In2", input->getRecordIdentifier()) << "the member's name wins over the identifier";

    ExternalInput copy(*input);
    EXPECT_EQ("In2", copy.getRecordIdentifier()) << "a copy keeps the model";

    for (auto [groupIndex, memberIndex] : {std::pair{0, 2}, {0, -1}, {1, 0}, {-2, 0}}) {
        input->setVarGroupIndex(groupIndex);
        input->setVarGroupMemberIndex(memberIndex);
        EXPECT_EQ(kIndexOutOfRangeId, diagnosticOf([&] { input->getRecordIdentifier(); }))
            << groupIndex << "/" << memberIndex;
    }
}

TEST(FPCIOMap, LastPairForAnInputWins) {
    FPCIOMap map;
    EXPECT_EQ(-1, map.getOverwritableOutputPort(2));
    map.setOverwritableIOPair(2, 5);
    map.setOverwritableIOPair(2, 7);
    map.setOverwritableIOPair(0, 1);
    EXPECT_EQ(7, map.getOverwritableOutputPort(2));
    EXPECT_EQ(2u, map.getPairs().size());
    FPCIOMap copy = map;
    map.setOverwritableIOPair(0, 9);
    EXPECT_EQ(1, copy.getOverwritableOutputPort(0));
}

} // namespace
