// The rules the bindings of the model classes add to the model's own: call
// sites and leaves only of the script's own model, ignored writes reported,
// bad indices raised as diagnostics. What each class shows scripts is
// listed in VelCGPackage_test.cpp.

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "RenderValue.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/PlexoModule.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;
using testing_support::EveryKindModel;
using testing_support::render;

namespace {

class ModelClassBindings : public ::testing::Test {
protected:
    static void SetUpTestSuite() { PlexoInitialize_velcg(); }

    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

TEST_F(ModelClassBindings, WritingEmbeddedTypeHasNoEffectAndIsReported) {
    EveryKindModel m;
    const CG::EmbeddedType* embedded = m.cgType->getEmbeddedType();
    vel::diag::WarningCollector warnings;
    client.setProperty(m.cgType->makeRef(), "EmbeddedType", *tuvArray::empty());
    EXPECT_EQ(embedded, m.cgType->getEmbeddedType());
    ASSERT_EQ(1u, warnings.warnings().size());
    EXPECT_EQ("VelCG:Binding:IgnoredWrite", warnings.warnings()[0].identifier());
    EXPECT_EQ((std::vector<std::string>{"VelCGType", "int32_t", "EmbeddedType"}),
              warnings.warnings()[0].arguments());
    // Reading is not a write.
    client.getProperty(m.cgType->makeRef(), "EmbeddedType");
    EXPECT_EQ(1u, warnings.warnings().size());
}

// Call sites of the script's own model are written in test_objects.py.
TEST_F(ModelClassBindings, ScriptsGiveASystemOnlyCallSitesItsOwnModelOwns) {
    EveryKindModel own, other;
    GraphicalBlock loose(new StoredGraphicalBlock(L"loose"));
    System alone;
    const struct {
        const char* what;
        System* system;
        std::vector<vel::mi::Handle*> blocks;
        const char* id;
    } rows[] = {
        {"an own block beside a block of another model",
         own.system,
         {own.block, other.block},
         messages::Model::InvalidOwnership},
        {"an async-queue block of another model",
         own.system,
         {other.queue},
         messages::Model::InvalidOwnership},
        {"a leaf of another model", own.system, {other.leaves[0]}, messages::Model::InvalidOwnership},
        {"a block of no model", own.system, {&loose}, messages::Model::InvalidOwnership},
        {"a block, for a system of no model", &alone, {own.block}, messages::Model::NoModel},
        {"no block, for a system of no model", &alone, {}, "no diagnostic"},
    };
    for (const auto& r : rows) {
        r.system->setGraphicalCallsites({});
        std::vector<vel::mi::HandleRef> refs;
        for (vel::mi::Handle* b : r.blocks) refs.push_back(b->makeRef());
        const std::string id = diagnosticOf(
            [&] { client.setProperty(r.system->makeRef(), "GraphicalCallsites", *tuvArray::objects(refs)); });
        EXPECT_EQ(r.id, id) << r.what;
        const auto held = client.getProperty(r.system->makeRef(), "GraphicalCallsites");
        std::vector<vel::mi::Handle*> after;
        for (const auto& h : held->handles()) after.push_back(h.get());
        EXPECT_EQ(id == "no diagnostic" ? r.blocks : std::vector<vel::mi::Handle*>{}, after) << r.what;
    }
}

TEST_F(ModelClassBindings, CallSitesSetByAScriptNeverOutliveTheirBlocks) {
    EveryKindModel own;
    auto other = std::make_unique<EveryKindModel>();
    const auto foreign = tuvArray::objects({other->block->makeRef()});
    EXPECT_EQ(messages::Model::InvalidOwnership, diagnosticOf([&] {
                  client.setProperty(own.system->makeRef(), "GraphicalCallsites", *foreign);
              }));
    other.reset();
    // Reading the list again must not reach the destroyed block.
    EXPECT_EQ("<VelCG.GraphicalBlock>",
              render(*client.getProperty(own.system->makeRef(), "GraphicalCallsites")));
}

// Scripts may reorder the leaves of an async-queue block (test_objects.py),
// never add or drop one: a leaf has one owner, and systems may point at it.
TEST_F(ModelClassBindings, ScriptsOnlyReorderTheLeafElements) {
    EveryKindModel m;
    const auto leaves = [&](std::vector<ToAsyncQueueBlock*> blocks) {
        std::vector<vel::mi::HandleRef> refs;
        for (auto* b : blocks) refs.push_back(b->makeRef());
        return tuvArray::objects(refs);
    };
    ToAsyncQueueBlock foreign(new StoredGraphicalBlock(L"x"));
    client.setProperty(m.system->makeRef(), "GraphicalCallsites", *leaves({m.leaves[0]}));
    for (const auto& refused : {leaves({&foreign}), leaves({m.leaves[1]}), leaves({m.leaves[0], &foreign})}) {
        EXPECT_EQ(messages::Model::InvalidOwnership,
                  diagnosticOf([&] { client.setProperty(m.queue->makeRef(), "leafElements", *refused); }))
            << render(*refused);
        EXPECT_EQ(m.leaves, m.queue->getLeafElements()) << "a refused write leaves the leaves unchanged";
    }
    EXPECT_EQ(m.leaves[0], client.getProperty(m.system->makeRef(), "GraphicalCallsites")->handles()[0].get());
}

// Each object below refers past a table of its model, or to itself.
TEST_F(ModelClassBindings, IndicesPastTheirTablesAreDiagnostics) {
    EveryKindModel m;
    ExternalInput* memberPast = new ExternalInput();
    m.model.addExternalInput(std::unique_ptr<ExternalInput>(memberPast));
    memberPast->setVarGroupIndex(0);
    memberPast->setVarGroupMemberIndex(5);
    m.input->setVarGroupIndex(9);
    m.velType->setCGTypeIdx(4);
    VelType unbound("x");
    unbound.setCGTypeIdx(-1);
    m.inPort->setGrSrcPortIdx(3, 0, 0);
    VelCGType* matrix = new VelCGType();
    matrix->setConstructor("matrix");
    matrix->setBaseIndex(1);
    m.model.addVelCGType(std::unique_ptr<VelCGType>(matrix));
    const struct {
        const char* what;
        vel::mi::Handle* object;
        const char* member;
        const char* id;
    } rows[] = {
        {"member position past the end", memberPast, "getRecordIdentifier", messages::Model::IndexOutOfRange},
        {"variable group past the end", m.input, "getRecordIdentifier", messages::Model::IndexOutOfRange},
        {"type index past the end", m.velType, "getName", messages::Model::IndexOutOfRange},
        {"negative type index", &unbound, "getName", "VelCG:Type::InvalidCGType"},
        {"source subsystem past the end", m.inPort, "GraphicalSource", messages::Model::IndexOutOfRange},
        {"matrix type of itself", matrix, "getContainerTypeName", messages::Model::CyclicType},
    };
    for (const auto& r : rows) {
        const bool property = client.classOf(*r.object).findOwnProperty(r.member);
        EXPECT_EQ(r.id, diagnosticOf([&] {
                      if (property)
                          client.getProperty(r.object->makeRef(), r.member);
                      else
                          client.callMethod(r.object->makeRef(), r.member);
                  }))
            << r.what;
    }
}

} // namespace
