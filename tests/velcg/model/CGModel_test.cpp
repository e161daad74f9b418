#include "velcg/CGModel.hpp"

#include <gtest/gtest.h>
#include <stdexcept>

#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/ChildCoderDataGroup.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ModelDiagnostics.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

// Counts live instances, to check who deletes what.
struct CountedParameter : StoredModelParameter {
    static int live;
    CountedParameter() { ++live; }
    ~CountedParameter() override { --live; }
};
int CountedParameter::live = 0;

std::unique_ptr<ModelParameter> countedParameter() {
    return std::make_unique<ModelParameter>(new CountedParameter());
}

// The defaults scripts read are listed in VelCGPackage_test.cpp.
TEST(CGModel, NewModelIsEmptyWithDefaultAttributes) {
    CGModel m;
    EXPECT_EQ(0u, m.getNumCoderDataGroups());
    EXPECT_TRUE(m.getBlockHierarchyMap()->getSubsystems().empty());
    EXPECT_EQ(nullptr, m.getSystemForFunction("f"));
    EXPECT_FALSE(m.isTAQBlockActualSrc(L"m/Gain"));
    EXPECT_EQ(nullptr, m.getStringMap());
    EXPECT_EQ(-1, m.getOverwritableOutputPort(0));
    EXPECT_FALSE(m.hasWarnedAboutQuaySFcnHeaderFileIgnore());
    EXPECT_EQ("getDWork", m.getCPPConfig().getDWorkGetMethodName());
    EXPECT_EQ("setDWork", m.getCPPConfig().getDWorkSetMethodName());
    EXPECT_EQ("getBlockSignals", m.getCPPConfig().getBlockSignalsGetMethodName());
    EXPECT_EQ("setBlockSignals", m.getCPPConfig().getBlockSignalsSetMethodName());
    EXPECT_FALSE(m.getCPPConfig().isCPPClassGenMode());
}

// The back pointers that adding sets show where the every-kind model's
// objects answer through their model (VelCGPackage_test.cpp).
TEST(CGModel, AddTakesOwnershipAndRefusesNull) {
    CGModel m;
    auto input = std::make_unique<ExternalInput>();
    ExternalInput* raw = input.get();
    m.addExternalInput(std::move(input));
    EXPECT_EQ(nullptr, input);
    EXPECT_EQ(raw, m.getExternalInputs().back());
    // No duplicate check: the same kind twice gives two entries.
    m.addVarGroup(std::make_unique<VarGroup>());
    m.addVarGroup(std::make_unique<VarGroup>());
    EXPECT_EQ(2u, m.getVarGroups().size());

    EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { m.addSystem(nullptr); }));
    EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { m.addVelCGType(nullptr); }));
}

TEST(CGModel, IndexLookupsReturnNullPastTheEndExceptCoderGroups) {
    CGModel m;
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    auto record = [&] {
        return std::unique_ptr<DataInterfaceRecord>(
            factory->createDataInterfaceRecord(new StoredDataInterfaceRecord()));
    };
    m.addVarGroup(std::make_unique<VarGroup>());
    m.addVelCGType(std::make_unique<VelCGType>());
    m.addModelParameter(countedParameter());
    m.addExternalInput(std::make_unique<ExternalInput>());
    m.addGlobalBlockOutput(record());
    m.addConstantBlockOutput(record());
    m.addExternalBlockOutput(record());
    m.addDWork(record());
    m.addExternalInputDataInterface(record());
    m.addExternalOutputDataInterface(record());
    const CGModel& c = m;
    const struct {
        const char* what;
        const void* atZero;
        const void* atOne;
        const void* listFront;
    } rows[] = {
        {"var group", c.getVarGroup(0), c.getVarGroup(1), c.getVarGroups()[0]},
        {"cg type", c.getVelCGType(0), c.getVelCGType(1), c.getVelCGTypes()[0]},
        {"model parameter", c.getModelParameter(0), c.getModelParameter(1), c.getModelParameters()[0]},
        {"external input", m.getExternalInput(0), m.getExternalInput(1), c.getExternalInputs()[0]},
        {"global output", m.getGlobalBlockOutput(0), c.getGlobalBlockOutput(1), c.getGlobalBlockOutputs()[0]},
        {"constant output", m.getConstantBlockOutput(0), c.getConstantBlockOutput(1),
         c.getConstantBlockOutputs()[0]},
        {"external output", m.getExternalBlockOutput(0), c.getExternalBlockOutput(1),
         c.getExternalBlockOutputs()[0]},
        {"dwork", m.getDWork(0), c.getDWork(1), c.getDWorks()[0]},
        {"input interface", c.getExternalInputDataInterface(0), c.getExternalInputDataInterface(1),
         c.getExternalInputInterfaces()[0]},
        {"output interface", c.getExternalOutputDataInterface(0), c.getExternalOutputDataInterface(1),
         c.getExternalOutputInterfaces()[0]},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(r.listFront, r.atZero) << r.what;
        EXPECT_EQ(nullptr, r.atOne) << r.what;
    }
    try {
        c.getCoderDataGroup(std::size_t{0});
        FAIL() << "expected out_of_range";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ("invalid vector<T> subscript", e.what());
    }
    EXPECT_EQ(nullptr, m.getCoderDataGroup("nope"));
}

TEST(CGModel, CoderDataGroupsArePlacedByNameAndPosition) {
    CGModel m;
    EXPECT_EQ(0u, m.appendCoderDataGroup(std::make_unique<ChildCoderDataGroup>("Fast")));
    EXPECT_EQ(1u, m.appendCoderDataGroup(std::make_unique<ChildCoderDataGroup>("Slow")));
    EXPECT_EQ(2u, m.getNumCoderDataGroups());
    ASSERT_NE(nullptr, m.getCoderDataGroup("Slow"));
    EXPECT_EQ(1, m.getCoderDataGroup("Slow")->getGroupIndex());
    EXPECT_EQ(m.getCoderDataGroup(std::size_t{0}), m.getCoderDataGroup("Fast"));
    EXPECT_THROW(m.getCoderDataGroup(std::size_t{2}), std::out_of_range);

    EXPECT_EQ(messages::Model::DuplicateName,
              diagnosticOf([&] { m.appendCoderDataGroup(std::make_unique<ChildCoderDataGroup>("Fast")); }));
    EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { m.appendCoderDataGroup(nullptr); }));
    EXPECT_EQ(2u, m.getNumCoderDataGroups());

    // The hook of the base class appends nothing.
    ChildCoderDataGroup hooked("Hook");
    m.addCoderDataGroup(&hooked);
    EXPECT_EQ(2u, m.getNumCoderDataGroups());
}

TEST(CGModel, FunctionMapKeepsLastSystemAndSettersOfListsDoNothing) {
    CGModel m;
    m.addSystem(std::make_unique<System>());
    m.addSystem(std::make_unique<System>());
    System* a = m.getSystems()[0];
    System* b = m.getSystems()[1];
    m.addFunctionForSystem("f", a);
    m.addFunctionForSystem("f", b);
    EXPECT_EQ(b, m.getSystemForFunction("f"));

    System other;
    m.setSystems({&other});
    m.setVarGroups({});
    m.setBlockHierarchyMap(nullptr);
    EXPECT_EQ((std::vector<System*>{a, b}), m.getSystems());
    EXPECT_NE(nullptr, m.getBlockHierarchyMap());
}

TEST(CGModel, SetModelParametersReplacesAndOwnsButRefusesCurrentOnes) {
    CountedParameter::live = 0;
    {
        CGModel m;
        m.addModelParameter(countedParameter());
        m.addModelParameter(countedParameter());
        ASSERT_EQ(2, CountedParameter::live);
        ModelParameter* kept = m.getModelParameters()[0];
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] { m.setModelParameters({kept}); }));
        EXPECT_EQ(2u, m.getModelParameters().size()) << "a refused list changes nothing";

        ModelParameter* fresh = countedParameter().release();
        EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] {
                      m.setModelParameters({fresh, fresh});
                  }));
        m.setModelParameters({fresh});
        EXPECT_EQ(1, CountedParameter::live) << "the previous parameters are deleted";
        EXPECT_EQ(fresh, m.getModelParameter(0));
    }
    EXPECT_EQ(0, CountedParameter::live) << "the model deletes the parameters it took";
}

TEST(CGModel, CompactPackagingFollowsThePackagingFormat) {
    CGModel m;
    const struct {
        int format;
        bool compact;
    } formats[] = {{0, false}, {1, true}, {2, true}, {3, false}, {-1, false}};
    for (const auto& f : formats) {
        m.setFilePackagingFormat(static_cast<FilePackagingFormat>(f.format));
        EXPECT_EQ(f.compact, m.getIsCompactFilePackaging()) << f.format;
    }
}

// Building and destroying the every-kind model under the sanitizers also
// checks that the model deletes what it owns, once, and nothing else.
TEST(CGModel, DestroyingAWholeModelReleasesEveryDataInterfaceReference) {
    const long before = CG::DataInterface::liveCount();
    {
        testing_support::EveryKindModel m;
        EXPECT_EQ(before + 4, CG::DataInterface::liveCount());
    }
    EXPECT_EQ(before, CG::DataInterface::liveCount());
}

} // namespace
