#include "CG/EmbeddedType.hpp"

#include <gtest/gtest.h>
#include <memory>

#include <boost/intrusive_ptr.hpp>

#include "CG/Type.hpp"
#include "DiagnosticTesting.hpp"
#include "vel/tuvArray.hpp"

namespace {

using testing_support::diagnosticOf;

TEST(EmbeddedType, ReferencesAreCountedAcrossOwnersAndHostValues) {
    long before = CG::EmbeddedType::liveCount();
    auto* t = CG::EmbeddedType::createFromIRType(*CG::Type::complex(CG::Type::floating("double", 64)));
    EXPECT_EQ(1, t->getRefCount());
    EXPECT_EQ("complex<double>", t->getName());
    tuvArrayPtr hostValue = CG::EmbeddedType::toTuvArray(t);
    EXPECT_EQ("embedded.type", hostValue->className());
    EXPECT_EQ(2, t->getRefCount());
    {
        boost::intrusive_ptr<const CG::EmbeddedType> shared(t);
        EXPECT_EQ(3, t->getRefCount());
    }
    t->release();
    EXPECT_EQ(before + 1, CG::EmbeddedType::liveCount()) << "the host value keeps it alive";
    hostValue.reset();
    EXPECT_EQ(before, CG::EmbeddedType::liveCount());
}

TEST(EmbeddedType, NullConvertsToTheEmptyValue) {
    EXPECT_TRUE(CG::EmbeddedType::toTuvArray(nullptr)->isEmpty());
}

TEST(EmbeddedType, HostValuesConvertBackOnlyFromTheirOwnClass) {
    auto* t = CG::EmbeddedType::createFromIRType(*CG::Type::floating("double", 64));
    auto hostValue = CG::EmbeddedType::toTuvArray(t);
    EXPECT_EQ(t, CG::EmbeddedType::fromTuvArray(*hostValue));
    EXPECT_EQ(nullptr, CG::EmbeddedType::fromTuvArray(*tuvArray::empty()));
    t->release();
    const tuvArrayPtr others[] = {
        tuvArray::float64(1),
        tuvArray::cell(0),
        tuvArray::opaque("coder.DataInterface", std::make_shared<int>(0)),
    };
    for (const auto& other : others)
        EXPECT_EQ("Korb:TypeMismatch", diagnosticOf([&] { CG::EmbeddedType::fromTuvArray(*other); }))
            << other->describe();
}

} // namespace
