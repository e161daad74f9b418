#include <gtest/gtest.h>

#include <boost/intrusive_ptr.hpp>

#include "CG/DataInterface.hpp"
#include "CG/EmbeddedType.hpp"
#include "CG/Type.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/tuvArray.hpp"

namespace {

using CG::Type;

TEST(CGType, RendersCompositeTypes) {
    auto i32 = Type::integer("int32_T", 32, true);
    auto dbl = Type::floating("real_T", 64);
    auto bus = Type::structure("Bus", {{"a", i32}, {"b", Type::matrix(dbl, {2, 3})}});
    struct Row {
        Type::Ptr type;
        const char* text;
    } rows[] = {
        {i32, "int32_T"},
        {Type::complex(dbl), "complex<real_T>"},
        {Type::pointer(i32), "int32_T*"},
        {Type::matrix(dbl, {2, 3}), "real_T[2][3]"},
        {bus, "struct Bus { int32_T a; real_T[2][3] b; }"},
        {Type::boolean(), "boolean_T"},
        {Type::voidType(), "void"},
    };
    for (const auto& r : rows) EXPECT_EQ(r.text, r.type->toString());
}

TEST(CGType, RefusesMalformedTypes) {
    auto i32 = Type::integer("int32_T", 32, true);
    const std::function<void()> bad[] = {
        [] { Type::integer("x", 0, true); },
        [] { Type::floating("x", 16); },
        [] { Type::complex(nullptr); },
        [] { Type::pointer(nullptr); },
        [&] { Type::matrix(i32, {-1}); },
        [&] {
            Type::structure("S", {{"a", i32}, {"a", i32}});
        },
        [] {
            Type::structure("S", {{"a", nullptr}});
        },
    };
    for (const auto& f : bad) {
        try {
            f();
            ADD_FAILURE() << "accepted";
        } catch (const vel::diag::Exception& e) {
            EXPECT_EQ("CG:InvalidType", e.identifier());
        }
    }
}

TEST(EmbeddedType, ReferencesAreCountedAcrossOwnersAndHostValues) {
    long before = CG::EmbeddedType::liveCount();
    auto* t = CG::EmbeddedType::createFromIRType(*Type::complex(Type::floating("real_T", 64)));
    EXPECT_EQ(1, t->getRefCount());
    EXPECT_EQ("complex<real_T>", t->getName());
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
    EXPECT_TRUE(CG::EmbeddedType::toTuvArray(nullptr)->isEmpty());
}

TEST(DataInterface, ReferencesAreCountedAcrossOwnersAndHostValues) {
    long before = CG::DataInterface::liveCount();
    auto* di =
        CG::DataInterface::create({"model_State.x", "StructElement", "model_State", "real_T", "Delay"});
    auto hostValue = CG::DataInterface::toTuvArray(di);
    EXPECT_EQ("coder.DataInterface", hostValue->className());
    EXPECT_EQ(di, hostValue->opaquePayload().get());
    di->release();
    EXPECT_EQ(
        "model_State.x",
        static_cast<const CG::DataInterface*>(hostValue->opaquePayload().get())->getDescription().identifier);
    hostValue.reset();
    EXPECT_EQ(before, CG::DataInterface::liveCount());
}

} // namespace
