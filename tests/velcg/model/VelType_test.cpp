#include "velcg/VelType.hpp"

#include <gtest/gtest.h>

#include "CG/EmbeddedType.hpp"
#include "CG/Type.hpp"
#include "DiagnosticTesting.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/VelCGType.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;
using testing_support::diagnosticTextOf;

namespace {

// A model with types: 0 int32_t (VelType 0), 1 unnamed complex of 0,
// 2 unnamed matrix of 1, 3 unnamed matrix of 0, 4 unnamed without VelType.
struct Types {
    CGModel model;
    Types() {
        auto add = [&](const char* name, const char* ctor, int base, int velIndex) {
            auto t = std::make_unique<VelCGType>(name);
            t->setConstructor(ctor);
            t->setBaseIndex(base);
            t->setVelTypeIndex(velIndex);
            model.addVelCGType(std::move(t));
        };
        add("int32_t", "", 0, 0);
        add("", "complex", 0, -1);
        add("", "matrix", 1, -1);
        add("", "matrix", 0, -1);
        add("", "", 0, -1);
        auto vt = std::make_unique<VelType>("int32");
        vt->setCGTypeIdx(0);
        model.addVelType(std::move(vt));
    }
    VelCGType& type(int i) { return const_cast<VelCGType&>(*model.getVelCGType(static_cast<unsigned>(i))); }
    VelType& velType(int i) { return *model.getVelTypes()[static_cast<std::size_t>(i)]; }
};

// Answers like a modelling environment that knows a data-type name.
struct NamedType : VelType {
    explicit NamedType(std::string n) : dt(std::move(n)) {}
    const std::string& getDTName() const override { return dt; }
    int getIdAliasedThruTo() const override { return 4; }
    std::string dt;
};

TEST(VelType, AliasFollowsTheDerivedClassChain) {
    VelType t;
    EXPECT_FALSE(t.isAliasType()) << "both ends of the chain default to -10";
    NamedType alias("x");
    EXPECT_TRUE(alias.isAliasType()) << "uses the derived class's alias chain";
    alias.setID(4);
    EXPECT_FALSE(alias.isAliasType());
}

TEST(VelType, NamesComeFromTheCodeGenerationTypeAndAreCached) {
    Types t;
    VelType& v = t.velType(0);
    EXPECT_EQ("int32_t", v.getName());
    EXPECT_EQ("cint32_t", v.getComplexName());
    t.type(0).setName("changed");
    v.setCGTypeIdx(4);
    EXPECT_EQ("int32_t", v.getName()) << "cached, never invalidated";
    EXPECT_EQ("cint32_t", v.getComplexName());
}

TEST(VelType, NameErrorsAreDiagnosticsAndCacheNothing) {
    Types t;
    NamedType bad("boolean");
    bad.setCGModel(&t.model);
    bad.setCGTypeIdx(-1);
    // Scripts match on these identifiers and texts exactly.
    EXPECT_EQ("VelCG:Type::InvalidCGType: VelType has invalid CGType",
              diagnosticTextOf([&] { bad.getName(); }));
    EXPECT_EQ("VelCG::Type::NoComplex: VelType cannot be complex",
              diagnosticTextOf([&] { bad.getComplexName(); }));
    bad.setCGTypeIdx(0);
    EXPECT_EQ("int32_t", bad.getName()) << "a corrected index succeeds";

    for (const char* never : {"fcn_call", "pointer", "integer", "action", "timer_uint32_pair"}) {
        NamedType n(never);
        EXPECT_EQ("VelCG::Type::NoComplex", diagnosticOf([&] { n.getComplexName(); }));
    }
    NamedType upper("Boolean");
    upper.setCGModel(&t.model);
    EXPECT_EQ("cint32_t", upper.getComplexName());

    VelType orphan;
    EXPECT_EQ(messages::Model::NoModel, diagnosticOf([&] { orphan.getName(); }));
    VelType past;
    past.setCGModel(&t.model);
    past.setCGTypeIdx(9);
    EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { past.getName(); }));
}

TEST(VelCGType, ContainerTypeNameResolvesThroughConstructors) {
    Types t;
    EXPECT_EQ("int32_t", t.type(0).getContainerTypeName());
    EXPECT_EQ("cint32_t", t.type(1).getContainerTypeName())
        << "complex: the complex name of the base's VelType";
    EXPECT_EQ("cint32_t", t.type(2).getContainerTypeName()) << "matrix of complex";
    EXPECT_EQ("int32_t", t.type(3).getContainerTypeName()) << "matrix of a named type";
    t.type(4).setName("own");
    t.type(4).setConstructor("matrix");
    EXPECT_EQ("own", t.type(4).getContainerTypeName()) << "a named type answers its own name";
    EXPECT_EQ("", t.type(2).getName()) << "the result is never stored";

    const std::string invalid = "VelCG::Type::InvalidVelType";
    t.type(4).setName("");
    t.type(4).setConstructor("");
    EXPECT_EQ(invalid + ": No VelType For CGType",
              diagnosticTextOf([&] { t.type(4).getContainerTypeName(); }));
    t.type(4).setConstructor("complex");
    t.type(4).setBaseIndex(1); // the base has no VelType
    EXPECT_EQ(invalid, diagnosticOf([&] { t.type(4).getContainerTypeName(); }));
    t.type(4).setConstructor("Matrix"); // case matters: falls through to own VelType
    EXPECT_EQ(invalid, diagnosticOf([&] { t.type(4).getContainerTypeName(); }));
    t.type(4).setConstructor("matrix");
    t.type(4).setBaseIndex(7);
    EXPECT_EQ(messages::Model::IndexOutOfRange, diagnosticOf([&] { t.type(4).getContainerTypeName(); }));
    t.type(4).setBaseIndex(4);
    EXPECT_EQ(messages::Model::CyclicType, diagnosticOf([&] { t.type(4).getContainerTypeName(); }));
}

TEST(VelCGType, MembersAreOwnedAndSetMembersRefusesCurrentOnes) {
    VelCGType t("S");
    t.addMember(std::make_unique<CGTypeMember>("a", 0));
    CGTypeMember* current = t.getMembers()[0];
    EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { t.setMembers({current}); }));
    EXPECT_EQ(current, t.getMembers()[0]) << "a refused list changes nothing";
    auto* b = new CGTypeMember("b", 1);
    EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { t.setMembers({b, b}); }));
    EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { t.setMembers({b, nullptr}); }));
    t.setMembers({b}); // deletes "a"; ASan reports a leak or double free otherwise
    ASSERT_EQ(1u, t.getMembers().size());
    EXPECT_EQ("b", t.getMembers()[0]->getName());
}

TEST(VelCGType, EmbeddedTypeHoldsExactlyOneReference) {
    const long before = CG::EmbeddedType::liveCount();
    {
        VelCGType t;
        t.setEmbeddedTypeFromCGType(*CG::Type::integer("int8_t", 8, true));
        const CG::EmbeddedType* first = t.getEmbeddedType();
        ASSERT_NE(nullptr, first);
        EXPECT_EQ(1, first->getRefCount());
        EXPECT_EQ("embedded.type", t.getEmbeddedTypeAsTuvArray()->className());

        CG::EmbeddedType* mine = CG::EmbeddedType::createFromIRType(*CG::Type::floating("double", 64));
        t.setEmbeddedType(mine);
        EXPECT_EQ(2, mine->getRefCount()) << "the type holds its own reference";
        EXPECT_EQ(before + 1, CG::EmbeddedType::liveCount()) << "the replaced object is released";
        mine->release();

        t.setEmbeddedTypeFromTuvArray(*tuvArray::empty());
        EXPECT_EQ(mine, t.getEmbeddedType()) << "writing the host value has no effect";
    }
    EXPECT_EQ(before, CG::EmbeddedType::liveCount());
}

} // namespace
