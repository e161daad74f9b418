#include "CG/DataInterface.hpp"

#include <gtest/gtest.h>

#include "vel/tuvArray.hpp"

namespace {

TEST(DataInterface, HostValuesHoldTheirOwnReference) {
    long before = CG::DataInterface::liveCount();
    auto* di =
        CG::DataInterface::create({"model_state.x", "StructElement", "model_state", "double", "Delay"});
    auto hostValue = CG::DataInterface::toTuvArray(di);
    EXPECT_EQ("coder.DataInterface", hostValue->className());
    EXPECT_EQ(di, hostValue->opaquePayload().get());
    di->release();
    EXPECT_EQ(
        "model_state.x",
        static_cast<const CG::DataInterface*>(hostValue->opaquePayload().get())->getDescription().identifier);
    hostValue.reset();
    EXPECT_EQ(before, CG::DataInterface::liveCount());
}

TEST(DataInterface, NullConvertsToTheEmptyValue) {
    EXPECT_TRUE(CG::DataInterface::toTuvArray(nullptr)->isEmpty());
}

} // namespace
