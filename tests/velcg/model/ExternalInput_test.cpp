#include "velcg/ExternalInput.hpp"

#include <gtest/gtest.h>

#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/FPCIOMap.hpp"
#include "velcg/ModelDiagnostics.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

// The other defaults are listed in VelCGPackage_test.cpp.
TEST(ExternalInput, FreshInputHasNoStorageClassAndNoRecordIdentifier) {
    ExternalInput in;
    EXPECT_EQ(-1, in.getStorageClass());
    EXPECT_EQ("", in.getRecordIdentifier());
}

// Of the every-kind model's type int32_t, member 0 is "u1".
TEST(ExternalInput, RecordIdentifierComesFromTheGroupTypeMember) {
    testing_support::EveryKindModel m;
    ExternalInput* input = m.input;
    EXPECT_EQ("In1", input->getRecordIdentifier()) << "no group: the identifier";
    input->setVarGroupIndex(0);
    input->setVarGroupMemberIndex(0);
    EXPECT_EQ("u1", input->getRecordIdentifier()) << "the member's name wins over the identifier";

    ExternalInput copy(*input);
    EXPECT_EQ("u1", copy.getRecordIdentifier()) << "a copy keeps the model";

    for (auto [groupIndex, memberIndex] : {std::pair{0, 1}, {0, -1}, {1, 0}, {-2, 0}}) {
        input->setVarGroupIndex(groupIndex);
        input->setVarGroupMemberIndex(memberIndex);
        EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { input->getRecordIdentifier(); }))
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
