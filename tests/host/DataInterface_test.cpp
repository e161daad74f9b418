#include "CG/DataInterface.hpp"

#include <gtest/gtest.h>
#include <memory>

#include "DiagnosticTesting.hpp"
#include "vel/tuvArray.hpp"

namespace {

using testing_support::diagnosticOf;

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

TEST(DataInterface, HostValuesConvertBackOnlyFromTheirOwnClass) {
    auto* di = CG::DataInterface::create({"x", "Variable", "", "double", "In1"});
    auto hostValue = CG::DataInterface::toTuvArray(di);
    EXPECT_EQ(di, CG::DataInterface::fromTuvArray(*hostValue));
    EXPECT_EQ(nullptr, CG::DataInterface::fromTuvArray(*tuvArray::empty()));
    di->release();
    const tuvArrayPtr others[] = {
        tuvArray::int32(1),
        tuvArray::fromUtf8(""),
        tuvArray::objects({}),
        tuvArray::opaque("embedded.type", std::make_shared<int>(0)),
    };
    for (const auto& other : others)
        EXPECT_EQ("Korb:TypeMismatch", diagnosticOf([&] { CG::DataInterface::fromTuvArray(*other); }))
            << other->describe();
}

} // namespace
