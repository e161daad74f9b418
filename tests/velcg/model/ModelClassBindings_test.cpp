// The model classes as scripts see them: each class's members by name and in
// order, with host types and values; which properties scripts may write; and
// the rules the bindings add to the model's own (call sites and leaves only
// of the script's own model, ignored writes reported, bad indices raised as
// diagnostics).

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "EveryKindModel.hpp"
#include "RenderValue.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/Features.hpp"
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

    // The model classes: those of the package from System on.
    static std::vector<const vel::mi::HandleClass*> modelClasses() {
        auto classes = korb::ObjectSystem::instance().getPackageClasses("VelCG");
        auto first = classes.begin();
        while (first != classes.end() && (*first)->getQualifiedName() != "VelCG.System") ++first;
        return {first, classes.end()};
    }

    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

// The every-kind model with the members it leaves at their defaults set too,
// so that no two properties of a class that could be mixed up read alike.
struct PopulatedModel : EveryKindModel {
    PopulatedModel() {
        group->setNonReusedName("model_State_nr");
        group->setHasElement("yes");
        group->setTypeTag("tag");
        input->setSizeVarGroupIndex(2);
        model.setModelReferenceTargetType("SIM");
        model.setIsQuayTarget(true);
        model.setIsGeneratingToSharedLocation(true);
        model.setFilePackagingFormat(FilePackagingFormat::CompactWithDataFile);
        model.setNumModelReferenceBlocks(3);
        model.addFunctionForSystem("f", system);
        system->setBriskSystemCode(2);
        auto* mp = dynamic_cast<ModelParameter*>(modelParameter);
        dynamic_cast<StoredModelParameter&>(*mp->getImpl()).setIsWorkspaceVar(true);
    }
};

// Default-constructed objects of the classes that have a default.
struct FreshObjects {
    System system;
    VelCGType type;
    CGTypeMember member;
    VarGroup group;
    VelType velType;
    ExternalInput input;

    std::vector<vel::mi::Handle*> all() { return {&system, &type, &member, &group, &velType, &input}; }
};

struct Prop {
    const char* name;
    const char* hostType;
    const char* value;           // of the populated object
    const char* fresh = nullptr; // of the default-constructed one, if the class has one
    tuvArrayPtr write = {};      // a value other than the populated one, if scripts may write it
};

struct Call {
    const char* name;
    std::vector<tuvArrayPtr> args;
    const char* answer;
};

// What scripts see of one class: its properties and methods in order.
struct ClassView {
    vel::mi::Handle* object;
    std::vector<Prop> props;
    std::vector<Call> methods = {};
};

// Every model class, by an object of it: its properties with the value each
// reads in the populated model and in a fresh object, and the value a script
// writes into the writable ones; its methods with their answers.
std::vector<ClassView> classViews(PopulatedModel& m) {
    const auto text = [](const char* s) { return tuvArray::fromUtf8(s); };
    const auto int32 = [](int v) { return tuvArray::int32(v); };
    const auto yes = tuvArray::logical(true);
    auto labels = tuvArray::cell(1, 2);
    labels->setCell(0, text("A"));
    labels->setCell(1, text("B"));
    return {
        {m.system,
         {{"Identifier", "char", "'every_kind_step'", "''", text("id2")},
          {"GraphicalCallsites", "any", "<VelCG.GraphicalBlock>", "<>", tuvArray::objects({})},
          {"StartFcn", "char", "'start'", "''", text("s2")},
          {"OutputFcn", "char", "'output'", "''", text("o2")},
          {"UpdateFcn", "char", "'update'", "''", text("u2")},
          {"OutputUpdateFcn", "char", "'step'", "''", text("ou2")},
          {"IsModelReferenceBaseSystem", "logical scalar", "logical false", "logical false", yes}},
         {{"getName", {}, "''"},
          {"isRootSystem", {}, "logical false"},
          {"isReusableLibrarySubsystem", {}, "logical false"},
          {"isAtomic", {}, "logical false"},
          {"isCalledByBlock", {}, "logical false"},
          {"getSystemType", {}, "''"},
          {"isInlined", {}, "logical false"},
          {"isNonReusable", {}, "logical false"},
          {"isReusable", {}, "logical true"}}},
        {m.cgType,
         {{"Name", "char", "'int32_t'", "''"},
          {"VelTypeIndex", "int32 scalar", "int32 0", "int32 -1"},
          {"Width", "int32 scalar", "int32 1", "int32 1"},
          {"SymbolicWidth", "char", "'1'", "'1'"},
          {"Constructor", "char", "''", "''"},
          {"BaseIndex", "int32 scalar", "int32 0", "int32 0"},
          {"Dimensions", "int32 vector", "int32[2,3]", "int32[]"},
          {"SymbolicDimensions", "cell", "{'N','M'}", "{}"},
          {"Bias", "double scalar", "double 0", "double 0"},
          {"Slope", "double scalar", "double 1.5", "double 0"},
          {"NBits", "int32 scalar", "int32 32", "int32 0"},
          {"IsSigned", "logical scalar", "logical true", "logical false"},
          {"Exponent", "int32 scalar", "int32 0", "int32 0"},
          {"IsLoweredMultiword", "logical scalar", "logical false", "logical false"},
          {"StructAlignment", "int32 scalar", "int32 -1", "int32 -1"},
          {"Members", "any", "<VelCG.CGTypeMember>", "<>"},
          {"EmbeddedType", "any", "embedded.type", "[]"}},
         {{"getContainerTypeName", {}, "'int32_t'"}}},
        {m.member,
         {{"Name", "char", "'u1'", "''"},
          {"CGTypeIndex", "int32 scalar", "int32 0", "int32 0"},
          {"Alignment", "int32 scalar", "int32 4", "int32 -1"}}},
        {&m.model,
         {{"Systems", "any", "<VelCG.System>"},
          {"BlockHierarchyMap", "any", "<VelCG.BlockHierarchyMap>"},
          {"CGTypes", "any", "<VelCG.VelCGType>"},
          {"VarGroups", "any", "<VelCG.VarGroup>"},
          {"VelTypes", "any", "<VelCG.VelType>"},
          {"ExternalInputs", "any", "<VelCG.ExternalInput>"},
          {"TAQBlocks", "any", "<VelCG.ToAsyncQueueBlock>"},
          {"SubsystemPathForRightClickBuild", "char", "'every_kind/Sub'"},
          {"SubsystemNameForRightClickBuild", "char", "'Sub'"},
          {"ModelReferenceTargetType", "char", "'SIM'"},
          {"NumChildSFunctions", "uint32 scalar", "uint32 2"},
          {"IsQuayTarget", "logical scalar", "logical true"},
          {"IsGeneratingToSharedLocation", "logical scalar", "logical true"},
          {"IsCompactFilePackaging", "logical scalar", "logical true"},
          {"MaxMultiWordBits", "int32 scalar", "int32 128"},
          {"IsModelReferenceTarget", "logical scalar", "logical false"},
          {"NumModelReferenceBlocks", "int32 scalar", "int32 3"},
          {"IsHostBasedSimulationTarget", "logical scalar", "logical false"},
          {"SharedCodeManagerPath", "char", "'/shared'", nullptr, text("/other/\xc3\xa9")}},
         {{"getName", {}, "''"},
          {"getVersion", {}, "''"},
          {"getKordelCoderVersion", {}, "''"},
          {"getKordelVersion", {}, "''"},
          {"getSystemForFunction", {text("f")}, "<VelCG.System>"},
          {"serializeModel", {text("unused")}, "[]"},
          {"serializeModelAfterScriv", {text("unused")}, "[]"}}},
        {m.group,
         {{"Name", "char", "'model_State'", "''"},
          {"Category", "char vector", "'DWork'", "'BlockIO'"},
          {"LocalName", "char", "'localState'", "'localB'"},
          {"NonreusedName", "char", "'model_State_nr'", "''"},
          {"SystemIndex", "int32 scalar", "int32 0", "int32 -1"},
          {"HasElement", "char", "'yes'", "''"},
          {"InstanceIndex", "int32 scalar", "int32 0", "int32 0"},
          {"IsPointer", "logical scalar", "logical false", "logical false"},
          {"ParentVarGroupIndex", "int32 scalar", "int32 -1", "int32 -1"},
          {"MemberIndexInParent", "int32 scalar", "int32 -1", "int32 -1"},
          {"CGTypeIndex", "int32 scalar", "int32 0", "int32 -1"},
          {"TypeTag", "char", "'tag'", "''"},
          {"GlobalOffset", "int32 scalar", "int32 8", "int32 0"},
          {"Elements", "cell", "{'a','b'}", "{}"},
          {"SubstructNames", "cell", "{'S'}", "{}"},
          {"SubstructIndices", "int32 vector", "int32 1", "int32[]"},
          {"DataGroupIndex", "int32 scalar", "int32 -1", "int32 -1"}}},
        {m.velType,
         {{"ID", "int32 scalar", "int32 7", "int32 -10", int32(12)},
          {"CGTypeIdx", "int32 scalar", "int32 0", "int32 0", int32(3)},
          {"ContainerCGTypeIdx", "int32 scalar", "int32 -1", "int32 -1", int32(4)},
          {"ContainerVelTypeIdx", "int32 scalar", "int32 -1", "int32 -1", int32(5)}},
         {{"getDTName", {}, "'int32'"},
          {"isShared", {}, "logical false"},
          {"isUserProvided", {}, "logical false"},
          {"getDescription", {}, "'int32'"},
          {"getIdAliasedTo", {}, "int32 -10"},
          {"getIdAliasedThruTo", {}, "int32 -10"},
          {"getHeaderFile", {}, "'int32'"},
          {"isEnumType", {}, "logical false"},
          {"isStructType", {}, "logical false"},
          {"isBus", {}, "logical false"},
          {"isAliasType", {}, "logical true"},
          {"getName", {}, "'int32_t'"},
          {"getComplexName", {}, "'cint32_t'"}}},
        {m.input,
         {{"CGTypeIndex", "int32 scalar", "int32 0", "int32 -1"},
          {"StorageClass", "char", "'Auto'", "''"},
          {"RequiresGlobalAccess", "logical scalar", "logical true", "logical true"},
          {"Identifier", "char", "'In1'", "''"},
          {"VarGroupIndex", "int32 scalar", "int32 -1", "int32 -1"},
          {"VarGroupMemberIndex", "int32 scalar", "int32 -1", "int32 -1"},
          {"HasVarDims", "logical scalar", "logical false", "logical false"},
          {"CanonicalDimSizeDWorkIndex", "int32 scalar", "int32 -1", "int32 -1"},
          {"HasCanonicalDimSizeDWorkIndex", "logical scalar", "logical false", "logical false"},
          {"SizeVarGroupIdx", "int32 scalar", "int32 2", "int32 -1"},
          {"SizeVarGroupMemberIndex", "int32 scalar", "int32 -1", "int32 -1"},
          {"DimSizeDWork", "int32 scalar", "int32 -1", "int32 -1"},
          {"Padding", "int32 scalar", "int32 4", "int32 0"}},
         {{"getRecordIdentifier", {}, "'In1'"}}},
        {m.model.getBlockHierarchyMap(),
         {{"Subsystems", "any", "<VelCG.GraphicalSubsystem,VelCG.GraphicalSubsystem>"},
          {"ReducedBlocks", "any", "<VelCG.GraphicalBlock>"}}},
        {m.root,
         {{"Name", "char", "'every_kind'"},
          {"VelName", "char", "'every_kind'"},
          {"SubsystemBlock", "any", "[]"},
          {"Type", "char vector", "'root'"},
          {"MaskType", "char", "''"},
          {"InputPortBlocks", "any", "<VelCG.GraphicalBlock>"},
          {"OutputPortBlocks", "any", "<VelCG.GraphicalBlock>"},
          {"DataStoreBlocks", "any", "<>"},
          {"SubsystemBlocks", "any", "<VelCG.GraphicalBlock>"},
          {"ChildSubsystems", "any", "<VelCG.GraphicalSubsystem>"},
          {"Blocks", "any",
           "<VelCG.GraphicalBlock,VelCG.GraphicalBlock,VelCG.GraphicalBlock,VelCG.GraphicalBlock>"}}},
        {m.block,
         {{"Name", "char", "'Gain'"},
          {"VelName", "char", "'every_kind/Gain'"},
          {"SID", "char", "'every_kind:5'"},
          {"Type", "char", "'Gain'"},
          {"Description", "char", "'scales its input'"},
          {"ReferencedModelName", "char", "''"},
          {"Virtual", "char vector", "'Virtual'"},
          {"DataInputPorts", "any", "<VelCG.Port>"},
          {"DataOutputPorts", "any", "<VelCG.Port>"},
          {"ControlInputPorts", "any", "<>"},
          {"NumFcnCallOutputPorts", "int32 scalar", "int32 0"},
          {"Parameters", "any", "{<VelCG.Parameter>}"},
          {"ContinuousStates", "any", "<VelCG.State>"},
          {"Derivatives", "any", "<VelCG.State>"},
          {"DiscreteStates", "any", "{<VelCG.DataInterfaceRecord>}"},
          {"DWorks", "any", "{<VelCG.DataInterfaceRecord>}"},
          {"RLSCommentName", "char", "'rls'"},
          {"IsProtectedModelBlock", "logical scalar", "logical false"}}},
        {m.inPort,
         {{"VelName", "char", "''"},
          {"SignalLabel", "char", "''"},
          {"Connected", "logical scalar", "logical false"},
          {"TestPoint", "logical scalar", "logical false"},
          {"MdlRefSimLoggableTestPoint", "logical scalar", "logical false"},
          {"GraphicalSource", "any", "<VelCG.Port>"},
          {"Regions", "any", "<>"}}},
        {m.region,
         {{"Source", "char", "'model_Signals.y'"},
          {"BusSelElIdx", "char", "''"},
          {"BusSelElCGTypeId", "char", "''"},
          {"Offset", "int32 scalar", "int32 2"},
          {"GroundDataTypeIdx", "int32 scalar", "int32 -1"},
          {"GroundLabel", "char", "''"},
          {"GroundIsComplex", "logical scalar", "logical false"},
          {"GroundIsSynthesized", "logical scalar", "logical false"},
          {"Dimensions", "int32 vector", "int32 1"},
          {"FunctionArgumentIdx", "int32 scalar", "int32 -1"},
          {"DataInterface", "any", "coder.DataInterface"}}},
        {m.parameter, {{"Name", "char", "'K'"}, {"ModelParameters", "any", "<VelCG.ModelParameter>"}}},
        {m.state, {{"Dimensions", "int32 vector", "int32 3"}}},
        {m.modelParameter,
         {{"Name", "char", "'K'"},
          {"IsAlias", "logical scalar", "logical false"},
          {"IsWorkspaceVar", "logical scalar", "logical true"},
          {"IsPseudoWorkspaceVar", "logical scalar", "logical false"},
          {"IsTunable", "logical scalar", "logical true"},
          {"GraphicalSource", "any", "<VelCG.GraphicalBlock>"},
          {"GraphicalReferences", "any", "<VelCG.GraphicalBlock>"},
          {"DataInterface", "any", "coder.DataInterface"}},
         {{"getOriginalName", {}, "'Korig'"}, {"getWorkspaceVarName", {}, "'Kws'"}}},
        // Mostly defaults: the written values tell its properties apart.
        {m.queue,
         {{"isFixedPoint", "logical scalar", "logical false", nullptr, yes},
          {"isEnum", "logical scalar", "logical false", nullptr, yes},
          {"dataTypeId", "int32 scalar", "int32 0", nullptr, int32(9)},
          {"dataTypeSize", "int32 scalar", "int32 0", nullptr, int32(4)},
          {"fxpNumericType", "int32 scalar", "int32 0", nullptr, int32(2)},
          {"fxpSignedness", "uint32 scalar", "uint32 0", nullptr, tuvArray::uint32(1)},
          {"fxpWordLength", "int32 scalar", "int32 0", nullptr, int32(16)},
          {"fxpFractionLength", "int32 scalar", "int32 0", nullptr, int32(8)},
          {"fxpSlopeAdjFactor", "double scalar", "double 0", nullptr, tuvArray::float64(1.25)},
          {"fxpFixedExponent", "int32 scalar", "int32 0", nullptr, int32(-3)},
          {"fxpBias", "double scalar", "double 0", nullptr, tuvArray::float64(0.5)},
          {"enumClassName", "char", "''", nullptr, text("Color")},
          {"enumClassification", "char", "''", nullptr, text("native")},
          {"enumLabels", "cell", "{}", nullptr, labels},
          {"enumValues", "int32 vector", "int32[]", nullptr, tuvArray::int32Vector({1, 2})},
          {"isComplex", "logical scalar", "logical false", nullptr, yes},
          {"isDiscete", "logical scalar", "logical false", nullptr, yes},
          {"isVirtualBus", "logical scalar", "logical false", nullptr, yes},
          {"isNVBus", "logical scalar", "logical false", nullptr, yes},
          {"isVarDims", "logical scalar", "logical false", nullptr, yes},
          {"dimensions", "int32 vector", "int32[]", nullptr, tuvArray::int32Vector({2, 2})},
          {"blockPath", "char", "'every_kind/Queue'", nullptr, text("m/Gain")},
          {"blockSID", "char", "''", nullptr, text("m:5")},
          {"portNumber", "int32 scalar", "int32 1", nullptr, int32(2)},
          {"signalName", "char", "''", nullptr, text("sig")},
          {"actSrcBlockPath", "char", "''", nullptr, text("m/Src")},
          {"actSrcBlockSID", "char", "''", nullptr, text("m:1")},
          {"actSrcPortNumber", "int32 scalar", "int32 0", nullptr, int32(3)},
          {"actSrcDWorkName", "char", "''", nullptr, text("dw")},
          {"actSrcStartElement", "int32 scalar", "int32 0", nullptr, int32(4)},
          {"signalSourceUUID", "char", "''", nullptr, text("uuid")},
          {"signalSourceUUIDasInteger", "int64 scalar", "int64 0", nullptr, tuvArray::int64(INT64_MAX)},
          {"units", "char", "''", nullptr, text("m/s")},
          {"uniqueId", "uint32 scalar", "uint32 0", nullptr, tuvArray::uint32(UINT32_MAX)},
          {"tid", "int32 scalar", "int32 0", nullptr, int32(5)},
          {"leafElements", "any", "<VelCG.ToAsyncQueueBlock,VelCG.ToAsyncQueueBlock>"},
          {"nvBusOffset", "int64 scalar", "int64 0", nullptr, tuvArray::int64(-8)},
          {"isLiveStreaming", "logical scalar", "logical false", nullptr, yes},
          {"isDeferredStreaming", "logical scalar", "logical false", nullptr, yes}}},
        {m.dWork, {{"DataInterface", "any", "coder.DataInterface"}}},
    };
}

// One "name hostType = value" line per property the class of object
// registers itself, in order.
std::string propertyLines(korb::Client& client, vel::mi::Handle& object) {
    std::string out;
    for (const auto& p : client.classOf(object).getProperties()) {
        const korb::Value v = client.getPropertyValue(object.makeRef(), p.name);
        out += p.name + " " + v.hostType + " = " + render(*v.data) + "\n";
    }
    return out;
}

TEST_F(ModelClassBindings, EveryClassReadsItsPropertiesInOrderWithHostTypeValueAndDefault) {
    PopulatedModel m;
    FreshObjects f;
    std::map<std::string, vel::mi::Handle*> fresh;
    for (vel::mi::Handle* h : f.all()) fresh[client.classOf(*h).getQualifiedName()] = h;
    std::set<std::string> covered;
    for (const ClassView& c : classViews(m)) {
        const std::string name = client.classOf(*c.object).getQualifiedName();
        SCOPED_TRACE(name);
        covered.insert(name);
        std::string expected, expectedFresh;
        for (const Prop& p : c.props) {
            expected += std::string(p.name) + " " + p.hostType + " = " + p.value + "\n";
            if (p.fresh) expectedFresh += std::string(p.name) + " " + p.hostType + " = " + p.fresh + "\n";
        }
        EXPECT_EQ(expected, propertyLines(client, *c.object));
        if (fresh.count(name)) {
            EXPECT_EQ(expectedFresh, propertyLines(client, *fresh[name])) << "defaults";
        }
    }
    for (const auto* cls : modelClasses())
        EXPECT_TRUE(covered.count(cls->getQualifiedName())) << cls->getQualifiedName() << " has no view";
}

// Written one after the other, each property reads back what was written and
// something else than before, so that no two properties share a field.
TEST_F(ModelClassBindings, WritablePropertiesReadBackWhatWasWrittenAndNoOtherIsWritable) {
    // Writes that have no effect (EmbeddedType) or only reorder objects that
    // render alike (leafElements); each has a test of its own.
    const std::set<std::string> writableWithoutReadBack{"VelCG.ToAsyncQueueBlock.leafElements",
                                                        "VelCG.VelCGType.EmbeddedType"};
    PopulatedModel m;
    for (const ClassView& c : classViews(m)) {
        const auto& cls = client.classOf(*c.object);
        for (const Prop& p : c.props) {
            const std::string qualified = cls.getQualifiedName() + "." + p.name;
            const auto* registered = cls.findOwnProperty(p.name);
            ASSERT_NE(nullptr, registered) << qualified;
            EXPECT_EQ(!p.write && !writableWithoutReadBack.count(qualified), registered->isReadOnly())
                << qualified;
            if (!p.write) continue;
            const std::string before = render(*client.getProperty(c.object->makeRef(), p.name));
            client.setProperty(c.object->makeRef(), p.name, *p.write);
            const std::string after = render(*client.getProperty(c.object->makeRef(), p.name));
            EXPECT_EQ(render(*p.write), after) << p.name;
            EXPECT_NE(before, after) << p.name << ": the written value must differ from the old one";
        }
    }
    EXPECT_EQ(L"/other/\u00e9", m.model.getSharedCodeManagerPath());
    EXPECT_TRUE(m.queue->getIsDiscrete()) << "\"isDiscete\" writes isDiscrete";
}

TEST_F(ModelClassBindings, EveryClassAnswersItsMethodsInOrder) {
    // The serialization methods are called with nothing to write; their
    // effect is checked in CGModelSerialize_test.cpp.
    vel::feature::ScopedValue noSerialization(VELFEAT_VelCGDirectEmitSerialize, 0);
    PopulatedModel m;
    for (const ClassView& c : classViews(m)) {
        const auto& cls = client.classOf(*c.object);
        std::vector<std::string> registered, expected;
        for (const auto& method : cls.getMethods()) registered.push_back(method.name);
        for (const Call& call : c.methods) {
            expected.push_back(call.name);
            EXPECT_EQ(call.answer, render(*client.callMethod(c.object->makeRef(), call.name, call.args)))
                << cls.getQualifiedName() << "." << call.name;
        }
        EXPECT_EQ(expected, registered) << cls.getQualifiedName();
    }
    // The system found is the model's own.
    const auto found =
        client.callMethod(m.model.makeRef(), "getSystemForFunction", {tuvArray::fromUtf8("f")});
    EXPECT_EQ(m.system, found->handles()[0].get());
}

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
        {"a block, an async-queue block and its leaf of the own model",
         own.system,
         {own.block, own.queue, own.leaves[0]},
         "no diagnostic"},
        {"an own block beside a block of another model",
         own.system,
         {own.block, other.block},
         kInvalidOwnershipId},
        {"an async-queue block of another model", own.system, {other.queue}, kInvalidOwnershipId},
        {"a leaf of another model", own.system, {other.leaves[0]}, kInvalidOwnershipId},
        {"a block of no model", own.system, {&loose}, kInvalidOwnershipId},
        {"a block, for a system of no model", &alone, {own.block}, kNoModelId},
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
    EXPECT_EQ(kInvalidOwnershipId, diagnosticOf([&] {
                  client.setProperty(own.system->makeRef(), "GraphicalCallsites", *foreign);
              }));
    other.reset();
    // Reading the list again must not reach the destroyed block.
    EXPECT_EQ("<VelCG.GraphicalBlock>",
              render(*client.getProperty(own.system->makeRef(), "GraphicalCallsites")));
}

// Scripts may reorder the leaves of an async-queue block, never add or drop
// one: a leaf has one owner, and systems may point at it.
TEST_F(ModelClassBindings, ScriptsOnlyReorderTheLeafElements) {
    EveryKindModel m;
    const auto leaves = [&](std::vector<ToAsyncQueueBlock*> blocks) {
        std::vector<vel::mi::HandleRef> refs;
        for (auto* b : blocks) refs.push_back(b->makeRef());
        return tuvArray::objects(refs);
    };
    ToAsyncQueueBlock foreign(new StoredGraphicalBlock(L"x"));
    client.setProperty(m.queue->makeRef(), "leafElements", *leaves({m.leaves[1], m.leaves[0]}));
    EXPECT_EQ((std::vector<ToAsyncQueueBlock*>{m.leaves[1], m.leaves[0]}), m.queue->getLeafElements());

    client.setProperty(m.system->makeRef(), "GraphicalCallsites", *leaves({m.leaves[0]}));
    for (const auto& refused : {leaves({&foreign}), leaves({m.leaves[1]}), leaves({m.leaves[0], &foreign})}) {
        EXPECT_EQ(kInvalidOwnershipId,
                  diagnosticOf([&] { client.setProperty(m.queue->makeRef(), "leafElements", *refused); }))
            << render(*refused);
        EXPECT_EQ((std::vector<ToAsyncQueueBlock*>{m.leaves[1], m.leaves[0]}), m.queue->getLeafElements())
            << "a refused write leaves the leaves unchanged";
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
        {"member position past the end", memberPast, "getRecordIdentifier", kIndexOutOfRangeId},
        {"variable group past the end", m.input, "getRecordIdentifier", kIndexOutOfRangeId},
        {"type index past the end", m.velType, "getName", kIndexOutOfRangeId},
        {"negative type index", &unbound, "getName", "VelCG:Type::InvalidCGType"},
        {"source subsystem past the end", m.inPort, "GraphicalSource", kIndexOutOfRangeId},
        {"matrix type of itself", matrix, "getContainerTypeName", kCyclicTypeId},
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
