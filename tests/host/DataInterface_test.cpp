// The native values scripts receive as opaque host values: data interfaces
// and embedded types, each counted by reference.
#include "CG/DataInterface.hpp"

#include <gtest/gtest.h>
#include <memory>

#include <boost/intrusive_ptr.hpp>

#include "CG/EmbeddedType.hpp"
#include "CG/Type.hpp"
#include "DiagnosticTesting.hpp"
#include "vel/tuvArray.hpp"

namespace {

using testing_support::diagnosticOf;

template <class T>
struct HostValueOf;
template <>
struct HostValueOf<CG::DataInterface> {
    static CG::DataInterface* make() {
        return CG::DataInterface::create(
            {"model_state.x", "StructElement", "model_state", "double", "Delay"});
    }
    static constexpr const char* kClass = "coder.DataInterface";
    static constexpr const char* kOther = "embedded.type";
};
template <>
struct HostValueOf<CG::EmbeddedType> {
    static CG::EmbeddedType* make() {
        return CG::EmbeddedType::createFromIRType(*CG::Type::complex(CG::Type::floating("double", 64)));
    }
    static constexpr const char* kClass = "embedded.type";
    static constexpr const char* kOther = "coder.DataInterface";
};

template <class T>
class HostValue : public ::testing::Test {};
using Classes = ::testing::Types<CG::DataInterface, CG::EmbeddedType>;
TYPED_TEST_SUITE(HostValue, Classes);

// Owners, shared pointers and host values each hold a reference; the last
// one released destroys the object.
TYPED_TEST(HostValue, ReferencesAreCountedAcrossOwnersAndHostValues) {
    const long before = TypeParam::liveCount();
    auto* object = HostValueOf<TypeParam>::make();
    EXPECT_EQ(1, object->getRefCount());
    tuvArrayPtr hostValue = TypeParam::toTuvArray(object);
    EXPECT_EQ(HostValueOf<TypeParam>::kClass, hostValue->className());
    EXPECT_EQ(object, hostValue->opaquePayload().get());
    EXPECT_EQ(2, object->getRefCount());
    {
        boost::intrusive_ptr<const TypeParam> shared(object);
        EXPECT_EQ(3, object->getRefCount());
    }
    object->release();
    EXPECT_EQ(before + 1, TypeParam::liveCount()) << "the host value keeps it alive";
    hostValue.reset();
    EXPECT_EQ(before, TypeParam::liveCount());
}

// Null converts to the empty value and back.
TYPED_TEST(HostValue, ConvertsBackOnlyFromItsOwnClass) {
    auto* object = HostValueOf<TypeParam>::make();
    const tuvArrayPtr hostValue = TypeParam::toTuvArray(object);
    EXPECT_EQ(object, TypeParam::fromTuvArray(*hostValue));
    object->release();
    EXPECT_TRUE(TypeParam::toTuvArray(nullptr)->isEmpty());
    EXPECT_EQ(nullptr, TypeParam::fromTuvArray(*tuvArray::empty()));
    const tuvArrayPtr others[] = {
        tuvArray::int32(1),
        tuvArray::fromUtf8(""),
        tuvArray::cell(0),
        tuvArray::objects({}),
        tuvArray::opaque(HostValueOf<TypeParam>::kOther, std::make_shared<int>(0)),
    };
    for (const auto& other : others)
        EXPECT_EQ("Korb:TypeMismatch", diagnosticOf([&] { TypeParam::fromTuvArray(*other); }))
            << other->describe();
}

} // namespace
