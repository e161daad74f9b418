#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "CG/DataInterface.hpp"
#include "CG/Type.hpp"
#include "DiagnosticTesting.hpp"
#include "RenderValue.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/Features.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/State.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"
#include "velcg/System.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGFileSectionKind.hpp"
#include "velcg/VelCGModuleFile.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;
using testing_support::render;
using testing_support::renderProperties;

namespace {

// One object of every script-visible model class, wired together in one model.
struct Scene {
    CGModel model;
    System* system = nullptr;
    VelCGType* cgType = nullptr;
    CGTypeMember* member = nullptr;
    VarGroup* group = nullptr;
    VelType* velType = nullptr;
    ExternalInput* input = nullptr;
    GraphicalSubsystem* root = nullptr;
    GraphicalBlock* block = nullptr;
    Port* inPort = nullptr;
    Port* outPort = nullptr;
    Region* region = nullptr;
    Parameter* parameter = nullptr;
    State* state = nullptr;
    ModelParameter* modelParameter = nullptr;
    ToAsyncQueueBlock* taq = nullptr;
    DataInterfaceRecord* dWork = nullptr;

    Scene() {
        std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
        CG::DataInterface* di =
            CG::DataInterface::create({"model_State.x", "StructElement", "model_State", "double", "Gain"});

        auto sys = std::make_unique<System>();
        system = sys.get();
        system->setIdentifier("sysId");
        system->setStartFcn("start");
        system->setOutputFcn("out");
        system->setUpdateFcn("upd");
        system->setOutputUpdateFcn("outupd");
        model.addSystem(std::move(sys));

        auto type = std::make_unique<VelCGType>("int32_t");
        cgType = type.get();
        cgType->setVelTypeIndex(0);
        cgType->setDimensions({2, 3});
        cgType->setSymbolicDimensions({"N", "M"});
        cgType->setSlope(1.5);
        cgType->setNBits(32);
        cgType->setIsSigned(true);
        cgType->setEmbeddedTypeFromCGType(*CG::Type::integer("int32_t", 32, true));
        cgType->addMember(std::make_unique<CGTypeMember>("u1", 0, 4));
        member = cgType->getMembers()[0];
        model.addVelCGType(std::move(type));

        auto vg = std::make_unique<VarGroup>();
        group = vg.get();
        group->setName("model_State");
        group->setCategory(VarGroupEnum::DWork);
        group->setLocalName("localState");
        group->setNonReusedName("model_State");
        group->setSystemIndex(0);
        group->setHasElement("yes");
        group->setCGTypeIndex(0);
        group->setTypeTag("tag");
        group->setGlobalOffset(8);
        group->setElements({"a", "b"});
        group->addSubStructName("S");
        group->addSubStructIndex(1);
        model.addVarGroup(std::move(vg));

        auto vt = std::make_unique<VelType>("int32");
        velType = vt.get();
        velType->setID(7);
        model.addVelType(std::move(vt));

        auto in = std::make_unique<ExternalInput>();
        input = in.get();
        input->setCGTypeIndex(0);
        input->setStorageClass(2, "Auto");
        input->setIdentifier("In1");
        input->setSizeVarGroupIndex(2);
        input->setPadding(4);
        model.addExternalInput(std::move(in));

        auto mpImpl = new StoredModelParameter(L"K");
        mpImpl->setIsWorkspaceVar(true);
        mpImpl->setIsTunable(true);
        mpImpl->setOriginalName(L"Korig");
        mpImpl->setWorkspaceVarName(L"Kws");
        mpImpl->setDataInterface(di);
        modelParameter = factory->createModelParameter(mpImpl);
        model.addModelParameter(std::unique_ptr<ModelParameter>(modelParameter));

        auto impl = new StoredGraphicalBlock(L"Gain");
        impl->setVelName(L"Gain1");
        impl->setSID(L"m:5");
        impl->setType(L"Gain");
        impl->setDescription(L"desc");
        impl->setVirtual(BlockVirtuality::Virtual);
        impl->setRLSCommentName("rls");
        inPort = impl->addDataInputPort(std::make_unique<Port>());
        inPort->setCGModel(&model);
        inPort->setGrSrcPortIdx(0, 0, 0);
        outPort = impl->addDataOutputPort(std::make_unique<Port>());
        outPort->setSignalLabel(L"sig");
        outPort->setTestPoint(true);
        auto r = std::make_unique<Region>();
        region = r.get();
        region->setSource("model_Signals.x");
        region->setOffset(2);
        region->setDataInterface(di);
        outPort->addRegion(std::move(r));
        parameter = impl->addParameter(std::unique_ptr<Parameter>(
            factory->createParameter(new StoredParameter(L"K", {modelParameter}))));
        state = impl->addContinuousState(std::make_unique<State>(std::vector<int>{3}));
        impl->addDerivative(std::make_unique<State>(std::vector<int>{3}));
        impl->addDiscreteState(std::unique_ptr<DataInterfaceRecord>(
            factory->createDataInterfaceRecord(new StoredDataInterfaceRecord())));
        dWork = impl->addDWork(std::unique_ptr<DataInterfaceRecord>(
            factory->createDataInterfaceRecord(new StoredDataInterfaceRecord(di))));

        auto sub = std::make_unique<StoredGraphicalSubsystem>(L"root", GraphicalSubsystemType::Root);
        root = sub.get();
        block = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl));
        root->setSubsystemBlockIndex({0, 0});
        model.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(sub));
        system->addGraphicalCallsite(block);
        mpImpl->setGraphicalSource(block);
        mpImpl->addGraphicalReference(block);

        auto t = std::make_unique<ToAsyncQueueBlock>(new StoredGraphicalBlock(L"TAQ"));
        taq = t.get();
        taq->addLeafElement(new ToAsyncQueueBlock(new StoredGraphicalBlock(L"leaf1")));
        taq->addLeafElement(new ToAsyncQueueBlock(new StoredGraphicalBlock(L"leaf2")));
        model.addTAQBlock(std::move(t));

        model.setSubsystemPathForRightClickBuild("m/Sub");
        model.setSubsystemNameForRightClickBuild("Sub");
        model.setModelReferenceTargetType("SIM");
        model.setNumChildSFunctions(2);
        model.setIsQuayTarget(true);
        model.setIsGeneratingToSharedLocation(true);
        model.setFilePackagingFormat(FilePackagingFormat::CompactWithDataFile);
        model.setMaxMultiWordBits(128);
        model.setNumModelReferenceBlocks(3);
        model.setSharedCodeManagerPath(L"/shared");

        di->release(); // the model's elements hold their own references
    }
};

struct Prop {
    const char* key;
    const char* hostType;
    std::string rendered;
};

const std::string kBlockClass = "VelCG.GraphicalBlock";
const std::string kQueueClass = "VelCG.ToAsyncQueueBlock";

class ModelClassBindings : public ::testing::Test {
protected:
    static void SetUpTestSuite() { PlexoInitialize_velcg(); }

    // The class of object registers exactly props, in order, and each reads
    // by key with its host type and rendering.
    void expectPropertiesInOrder(vel::mi::Handle* object, const std::vector<Prop>& props) {
        ASSERT_NE(nullptr, object);
        const auto& cls = client.classOf(*object);
        SCOPED_TRACE(cls.getQualifiedName());
        std::vector<std::string> registered, expected;
        for (const auto& p : cls.getProperties()) registered.push_back(p.name);
        for (const auto& p : props) expected.push_back(p.key);
        EXPECT_EQ(expected, registered);
        for (const auto& p : props) {
            korb::Value v = client.getPropertyValue(object->makeRef(), p.key);
            EXPECT_EQ(p.hostType, v.hostType) << p.key;
            EXPECT_EQ(p.rendered, render(*v.data)) << p.key;
        }
    }

    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

// A model with one system, one block in its root subsystem and one
// async-queue block with one leaf: the blocks a script may name as the
// system's call sites.
struct CallSiteModel {
    std::unique_ptr<CGModel> model = std::make_unique<CGModel>();
    System* system = nullptr;
    GraphicalBlock* block = nullptr;
    ToAsyncQueueBlock* taq = nullptr;
    ToAsyncQueueBlock* leaf = nullptr;

    CallSiteModel() {
        auto sys = std::make_unique<System>();
        system = sys.get();
        model->addSystem(std::move(sys));
        auto root = std::make_unique<StoredGraphicalSubsystem>(L"root", GraphicalSubsystemType::Root);
        block =
            root->addGraphicalBlock(std::make_unique<GraphicalBlock>(new StoredGraphicalBlock(L"caller")));
        model->getBlockHierarchyMap()->addGraphicalSubsystem(std::move(root));
        auto t = std::make_unique<ToAsyncQueueBlock>(new StoredGraphicalBlock(L"queue"));
        taq = t.get();
        leaf = new ToAsyncQueueBlock(new StoredGraphicalBlock(L"leaf"));
        taq->addLeafElement(leaf);
        model->addTAQBlock(std::move(t));
    }
};

TEST_F(ModelClassBindings, RegistersModelClassesInOrderAfterFileClasses) {
    const std::vector<std::array<const char*, 3>> expected = {
        {"System", "VelCG System object", korb::kHeterogeneous},
        {"VelCGType", "VelCG Type", korb::kHeterogeneous},
        {"CGTypeMember", "VelCGType member", korb::kHeterogeneous},
        {"CGModel", "CGModel object", korb::kHeterogeneous},
        {"VarGroup", "VelCG VarGroup", korb::kHeterogeneous},
        {"VelType", "VelType", korb::kHeterogeneous},
        {"ExternalInput", "VelCG ExternalInput", korb::kHeterogeneous},
        {"BlockHierarchyMap", "BHM object", korb::kHeterogeneous},
        {"GraphicalSubsystem", "Graph obj", korb::kHeterogeneous},
        {"GraphicalBlock", "VelCG Graphical block object", korb::kHeterogeneous},
        {"Port", "VelCG Port object", korb::kHeterogeneous},
        {"Region", "VelCG Region object", korb::kHeterogeneous},
        {"Parameter", "VelCG Parameter object", korb::kHeterogeneous},
        {"State", "VelCG State object", korb::kHeterogeneous},
        {"ModelParameter", "VelCG Model Parameter object", korb::kHeterogeneous},
        {"ToAsyncQueueBlock", "VelCG ToAsyncQueue block object", "VelCG.GraphicalBlock"},
        {"DataInterfaceRecord", "VelCG  DataInterfaceRecord object", korb::kHeterogeneous},
    };
    auto classes = korb::ObjectSystem::instance().getPackageClasses("VelCG");
    ASSERT_GE(classes.size(), expected.size());
    // The model classes close the package, after the generated-file classes.
    const std::size_t first = classes.size() - expected.size();
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto* cls = classes[first + i];
        EXPECT_EQ(std::string("VelCG.") + expected[i][0], cls->getQualifiedName()) << i;
        EXPECT_EQ(expected[i][1], cls->getDescription()) << i;
        EXPECT_EQ(expected[i][2], cls->getSuperclassName()) << i;
        EXPECT_FALSE(cls->isAbstract()) << i;
    }
}

// The objects a property value holds: its handles, or those of its cells.
// `onlyObjects` is false when the value is something else than objects, the
// empty value or cells of those.
struct HeldObjects {
    std::vector<vel::mi::HandleRef> refs;
    bool onlyObjects = true;
};

HeldObjects heldObjects(const tuvArray& value) {
    HeldObjects held;
    const auto take = [&held](const tuvArray& a) {
        if (a.classId() == tuvClass::Object)
            held.refs.insert(held.refs.end(), a.handles().begin(), a.handles().end());
        else if (a.classId() != tuvClass::Double || !a.isEmpty())
            held.onlyObjects = false;
    };
    if (value.classId() == tuvClass::Cell)
        for (std::size_t i = 0; i < value.numel(); ++i) take(*value.getCell(i));
    else
        take(value);
    return held;
}

TEST_F(ModelClassBindings, ObjectHoldingPropertiesDeclareTheClassOfWhatTheyHold) {
    for (const auto* cls : client.getClasses("VelCG")) {
        for (const auto& p : client.describeProperties(*cls))
            EXPECT_TRUE(p.elementClass.empty() || client.findClass(p.elementClass))
                << cls->getQualifiedName() << "." << p.name << " holds " << p.elementClass;
    }

    // Every object reachable through properties from the scene's model and
    // from a repository with one file of each kind, whose sections are only
    // reached through methods.
    Scene s;
    VelCGFileRepository repository;
    VelCGModuleFile& module = repository.createModuleSourceFile("m.c", {0});
    repository.createDataTypesFile("m_types.h");
    repository.createGenericFile("main.c");
    std::vector<vel::mi::Handle*> pending{&s.model, &repository, module.korb_getFileSection(BANNER_SECTION),
                                          module.korb_getFileSection(INCLUDES_SECTION),
                                          module.korb_getFileSection(FUNCTIONS_SECTION)};
    std::set<const vel::mi::Handle*> visited;
    std::set<std::string> classesVisited;
    while (!pending.empty()) {
        vel::mi::Handle* object = pending.back();
        pending.pop_back();
        if (!visited.insert(object).second) continue;
        const auto& cls = client.classOf(*object);
        classesVisited.insert(cls.getQualifiedName());
        for (const korb::PropertyInfo& p : client.describeProperties(cls)) {
            SCOPED_TRACE(cls.getQualifiedName() + "." + p.name);
            const tuvArrayPtr value = client.getProperty(object->makeRef(), p.name);
            const HeldObjects held = heldObjects(*value);
            const bool declared = !p.elementClass.empty();
            EXPECT_TRUE(!declared || held.onlyObjects) << render(*value);
            EXPECT_TRUE(declared || held.refs.empty())
                << "objects of an undeclared class: " << render(*value);
            const bool oneOrNone = value->classId() == tuvClass::Object
                                       ? value->numel() <= 1
                                       : value->classId() == tuvClass::Double && value->isEmpty();
            EXPECT_TRUE(!p.oneObject || oneOrNone) << render(*value);
            for (const vel::mi::HandleRef& ref : held.refs) {
                ASSERT_NE(nullptr, ref.get());
                EXPECT_TRUE(!declared || client.isA(*ref.get(), p.elementClass))
                    << client.classOf(*ref.get()).getQualifiedName();
                pending.push_back(ref.get());
            }
        }
    }
    for (const auto* cls : client.getClasses("VelCG")) {
        EXPECT_TRUE(cls->isAbstract() || classesVisited.count(cls->getQualifiedName()))
            << cls->getQualifiedName() << " was not reached";
    }
}

TEST_F(ModelClassBindings, SystemPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.system, {{"Identifier", "char", "'sysId'"},
                                       {"GraphicalCallsites", "any", "<" + kBlockClass + ">"},
                                       {"StartFcn", "char", "'start'"},
                                       {"OutputFcn", "char", "'out'"},
                                       {"UpdateFcn", "char", "'upd'"},
                                       {"OutputUpdateFcn", "char", "'outupd'"},
                                       {"IsModelReferenceBaseSystem", "logical scalar", "logical false"}});
    // Handles refer to the very objects of the model.
    EXPECT_EQ(s.block, client.getProperty(s.system->makeRef(), "GraphicalCallsites")->handles()[0].get());
}

TEST_F(ModelClassBindings, VelCGTypePropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.cgType, {{"Name", "char", "'int32_t'"},
                                       {"VelTypeIndex", "int32 scalar", "int32 0"},
                                       {"Width", "int32 scalar", "int32 1"},
                                       {"SymbolicWidth", "char", "'1'"},
                                       {"Constructor", "char", "''"},
                                       {"BaseIndex", "int32 scalar", "int32 0"},
                                       {"Dimensions", "int32 vector", "int32[2,3]"},
                                       {"SymbolicDimensions", "cell", "{'N','M'}"},
                                       {"Bias", "double scalar", "double 0"},
                                       {"Slope", "double scalar", "double 1.5"},
                                       {"NBits", "int32 scalar", "int32 32"},
                                       {"IsSigned", "logical scalar", "logical true"},
                                       {"Exponent", "int32 scalar", "int32 0"},
                                       {"IsLoweredMultiword", "logical scalar", "logical false"},
                                       {"StructAlignment", "int32 scalar", "int32 -1"},
                                       {"Members", "any", "<VelCG.CGTypeMember>"},
                                       {"EmbeddedType", "any", "embedded.type"}});
}

TEST_F(ModelClassBindings, CGTypeMemberPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.member, {{"Name", "char", "'u1'"},
                                       {"CGTypeIndex", "int32 scalar", "int32 0"},
                                       {"Alignment", "int32 scalar", "int32 4"}});
}

TEST_F(ModelClassBindings, CGModelPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(&s.model, {{"Systems", "any", "<VelCG.System>"},
                                       {"BlockHierarchyMap", "any", "<VelCG.BlockHierarchyMap>"},
                                       {"CGTypes", "any", "<VelCG.VelCGType>"},
                                       {"VarGroups", "any", "<VelCG.VarGroup>"},
                                       {"VelTypes", "any", "<VelCG.VelType>"},
                                       {"ExternalInputs", "any", "<VelCG.ExternalInput>"},
                                       {"TAQBlocks", "any", "<" + kQueueClass + ">"},
                                       {"SubsystemPathForRightClickBuild", "char", "'m/Sub'"},
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
                                       {"SharedCodeManagerPath", "char", "'/shared'"}});
}

TEST_F(ModelClassBindings, VarGroupPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.group, {{"Name", "char", "'model_State'"},
                                      {"Category", "char vector", "'DWork'"},
                                      {"LocalName", "char", "'localState'"},
                                      {"NonreusedName", "char", "'model_State'"},
                                      {"SystemIndex", "int32 scalar", "int32 0"},
                                      {"HasElement", "char", "'yes'"},
                                      {"InstanceIndex", "int32 scalar", "int32 0"},
                                      {"IsPointer", "logical scalar", "logical false"},
                                      {"ParentVarGroupIndex", "int32 scalar", "int32 -1"},
                                      {"MemberIndexInParent", "int32 scalar", "int32 -1"},
                                      {"CGTypeIndex", "int32 scalar", "int32 0"},
                                      {"TypeTag", "char", "'tag'"},
                                      {"GlobalOffset", "int32 scalar", "int32 8"},
                                      {"Elements", "cell", "{'a','b'}"},
                                      {"SubstructNames", "cell", "{'S'}"},
                                      {"SubstructIndices", "int32 vector", "int32 1"},
                                      {"DataGroupIndex", "int32 scalar", "int32 -1"}});
}

TEST_F(ModelClassBindings, VelTypePropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.velType, {{"ID", "int32 scalar", "int32 7"},
                                        {"CGTypeIdx", "int32 scalar", "int32 0"},
                                        {"ContainerCGTypeIdx", "int32 scalar", "int32 -1"},
                                        {"ContainerVelTypeIdx", "int32 scalar", "int32 -1"}});
}

TEST_F(ModelClassBindings, ExternalInputPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.input, {{"CGTypeIndex", "int32 scalar", "int32 0"},
                                      {"StorageClass", "char", "'Auto'"},
                                      {"RequiresGlobalAccess", "logical scalar", "logical true"},
                                      {"Identifier", "char", "'In1'"},
                                      {"VarGroupIndex", "int32 scalar", "int32 -1"},
                                      {"VarGroupMemberIndex", "int32 scalar", "int32 -1"},
                                      {"HasVarDims", "logical scalar", "logical false"},
                                      {"CanonicalDimSizeDWorkIndex", "int32 scalar", "int32 -1"},
                                      {"HasCanonicalDimSizeDWorkIndex", "logical scalar", "logical false"},
                                      {"SizeVarGroupIdx", "int32 scalar", "int32 2"},
                                      {"SizeVarGroupMemberIndex", "int32 scalar", "int32 -1"},
                                      {"DimSizeDWork", "int32 scalar", "int32 -1"},
                                      {"Padding", "int32 scalar", "int32 4"}});
}

TEST_F(ModelClassBindings, BlockHierarchyMapPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(
        s.model.getBlockHierarchyMap(),
        {{"Subsystems", "any", "<VelCG.GraphicalSubsystem>"}, {"ReducedBlocks", "any", "<>"}});
}

TEST_F(ModelClassBindings, GraphicalSubsystemPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.root, {{"Name", "char", "'root'"},
                                     {"VelName", "char", "'root'"},
                                     {"SubsystemBlock", "any", "<" + kBlockClass + ">"},
                                     {"Type", "char vector", "'root'"},
                                     {"MaskType", "char", "''"},
                                     {"InputPortBlocks", "any", "<>"},
                                     {"OutputPortBlocks", "any", "<>"},
                                     {"DataStoreBlocks", "any", "<>"},
                                     {"SubsystemBlocks", "any", "<>"},
                                     {"ChildSubsystems", "any", "<>"},
                                     {"Blocks", "any", "<" + kBlockClass + ">"}});
}

TEST_F(ModelClassBindings, GraphicalBlockPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.block, {{"Name", "char", "'Gain'"},
                                      {"VelName", "char", "'Gain1'"},
                                      {"SID", "char", "'m:5'"},
                                      {"Type", "char", "'Gain'"},
                                      {"Description", "char", "'desc'"},
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
                                      {"IsProtectedModelBlock", "logical scalar", "logical false"}});
}

TEST_F(ModelClassBindings, PortPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.inPort, {{"VelName", "char", "''"},
                                       {"SignalLabel", "char", "''"},
                                       {"Connected", "logical scalar", "logical false"},
                                       {"TestPoint", "logical scalar", "logical false"},
                                       {"MdlRefSimLoggableTestPoint", "logical scalar", "logical false"},
                                       {"GraphicalSource", "any", "<VelCG.Port>"},
                                       {"Regions", "any", "<>"}});
    // Handles refer to the very objects of the model.
    EXPECT_EQ(s.outPort, client.getProperty(s.inPort->makeRef(), "GraphicalSource")->handles()[0].get());
}

TEST_F(ModelClassBindings, RegionPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.region, {{"Source", "char", "'model_Signals.x'"},
                                       {"BusSelElIdx", "char", "''"},
                                       {"BusSelElCGTypeId", "char", "''"},
                                       {"Offset", "int32 scalar", "int32 2"},
                                       {"GroundDataTypeIdx", "int32 scalar", "int32 -1"},
                                       {"GroundLabel", "char", "''"},
                                       {"GroundIsComplex", "logical scalar", "logical false"},
                                       {"GroundIsSynthesized", "logical scalar", "logical false"},
                                       {"Dimensions", "int32 vector", "int32 1"},
                                       {"FunctionArgumentIdx", "int32 scalar", "int32 -1"},
                                       {"DataInterface", "any", "coder.DataInterface"}});
}

TEST_F(ModelClassBindings, ParameterPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(dynamic_cast<vel::mi::Handle*>(s.parameter),
                            {{"Name", "char", "'K'"}, {"ModelParameters", "any", "<VelCG.ModelParameter>"}});
}

TEST_F(ModelClassBindings, StatePropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.state, {{"Dimensions", "int32 vector", "int32 3"}});
}

TEST_F(ModelClassBindings, ModelParameterPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(dynamic_cast<vel::mi::Handle*>(s.modelParameter),
                            {{"Name", "char", "'K'"},
                             {"IsAlias", "logical scalar", "logical false"},
                             {"IsWorkspaceVar", "logical scalar", "logical true"},
                             {"IsPseudoWorkspaceVar", "logical scalar", "logical false"},
                             {"IsTunable", "logical scalar", "logical true"},
                             {"GraphicalSource", "any", "<" + kBlockClass + ">"},
                             {"GraphicalReferences", "any", "<" + kBlockClass + ">"},
                             {"DataInterface", "any", "coder.DataInterface"}});
}

TEST_F(ModelClassBindings, ToAsyncQueueBlockPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(s.taq, {{"isFixedPoint", "logical scalar", "logical false"},
                                    {"isEnum", "logical scalar", "logical false"},
                                    {"dataTypeId", "int32 scalar", "int32 0"},
                                    {"dataTypeSize", "int32 scalar", "int32 0"},
                                    {"fxpNumericType", "int32 scalar", "int32 0"},
                                    {"fxpSignedness", "uint32 scalar", "uint32 0"},
                                    {"fxpWordLength", "int32 scalar", "int32 0"},
                                    {"fxpFractionLength", "int32 scalar", "int32 0"},
                                    {"fxpSlopeAdjFactor", "double scalar", "double 0"},
                                    {"fxpFixedExponent", "int32 scalar", "int32 0"},
                                    {"fxpBias", "double scalar", "double 0"},
                                    {"enumClassName", "char", "''"},
                                    {"enumClassification", "char", "''"},
                                    {"enumLabels", "cell", "{}"},
                                    {"enumValues", "int32 vector", "int32[]"},
                                    {"isComplex", "logical scalar", "logical false"},
                                    {"isDiscete", "logical scalar", "logical false"},
                                    {"isVirtualBus", "logical scalar", "logical false"},
                                    {"isNVBus", "logical scalar", "logical false"},
                                    {"isVarDims", "logical scalar", "logical false"},
                                    {"dimensions", "int32 vector", "int32[]"},
                                    {"blockPath", "char", "''"},
                                    {"blockSID", "char", "''"},
                                    {"portNumber", "int32 scalar", "int32 0"},
                                    {"signalName", "char", "''"},
                                    {"actSrcBlockPath", "char", "''"},
                                    {"actSrcBlockSID", "char", "''"},
                                    {"actSrcPortNumber", "int32 scalar", "int32 0"},
                                    {"actSrcDWorkName", "char", "''"},
                                    {"actSrcStartElement", "int32 scalar", "int32 0"},
                                    {"signalSourceUUID", "char", "''"},
                                    {"signalSourceUUIDasInteger", "int64 scalar", "int64 0"},
                                    {"units", "char", "''"},
                                    {"uniqueId", "uint32 scalar", "uint32 0"},
                                    {"tid", "int32 scalar", "int32 0"},
                                    {"leafElements", "any", "<" + kQueueClass + "," + kQueueClass + ">"},
                                    {"nvBusOffset", "int64 scalar", "int64 0"},
                                    {"isLiveStreaming", "logical scalar", "logical false"},
                                    {"isDeferredStreaming", "logical scalar", "logical false"}});
}

TEST_F(ModelClassBindings, DataInterfaceRecordPropertiesReadByKeyInRegistrationOrder) {
    Scene s;
    expectPropertiesInOrder(dynamic_cast<vel::mi::Handle*>(s.dWork),
                            {{"DataInterface", "any", "coder.DataInterface"}});
}

// The async-queue block also answers the graphical block's properties.
TEST_F(ModelClassBindings, ToAsyncQueueBlockAlsoReadsGraphicalBlockProperties) {
    Scene s;
    EXPECT_EQ("'TAQ'", render(*client.getProperty(s.taq->makeRef(), "Name")));
}

// A fresh object of each class reads, property by property, as the defaults
// its class documents.

TEST_F(ModelClassBindings, FreshSystemReadsAsItsDefaults) {
    System system;
    EXPECT_EQ(
        "Identifier=''\n"
        "GraphicalCallsites=<>\n"
        "StartFcn=''\n"
        "OutputFcn=''\n"
        "UpdateFcn=''\n"
        "OutputUpdateFcn=''\n"
        "IsModelReferenceBaseSystem=logical false\n",
        renderProperties(client, system));
}

TEST_F(ModelClassBindings, FreshVarGroupReadsAsItsDefaults) {
    VarGroup group;
    EXPECT_EQ(
        "Name=''\n"
        "Category='BlockIO'\n"
        "LocalName='localB'\n"
        "NonreusedName=''\n"
        "SystemIndex=int32 -1\n"
        "HasElement=''\n"
        "InstanceIndex=int32 0\n"
        "IsPointer=logical false\n"
        "ParentVarGroupIndex=int32 -1\n"
        "MemberIndexInParent=int32 -1\n"
        "CGTypeIndex=int32 -1\n"
        "TypeTag=''\n"
        "GlobalOffset=int32 0\n"
        "Elements={}\n"
        "SubstructNames={}\n"
        "SubstructIndices=int32[]\n"
        "DataGroupIndex=int32 -1\n",
        renderProperties(client, group));
}

TEST_F(ModelClassBindings, FreshExternalInputReadsAsItsDefaults) {
    ExternalInput input;
    EXPECT_EQ(
        "CGTypeIndex=int32 -1\n"
        "StorageClass=''\n"
        "RequiresGlobalAccess=logical true\n"
        "Identifier=''\n"
        "VarGroupIndex=int32 -1\n"
        "VarGroupMemberIndex=int32 -1\n"
        "HasVarDims=logical false\n"
        "CanonicalDimSizeDWorkIndex=int32 -1\n"
        "HasCanonicalDimSizeDWorkIndex=logical false\n"
        "SizeVarGroupIdx=int32 -1\n"
        "SizeVarGroupMemberIndex=int32 -1\n"
        "DimSizeDWork=int32 -1\n"
        "Padding=int32 0\n",
        renderProperties(client, input));
}

TEST_F(ModelClassBindings, FreshVelTypeReadsAsItsDefaults) {
    VelType velType;
    EXPECT_EQ(
        "ID=int32 -10\n"
        "CGTypeIdx=int32 0\n"
        "ContainerCGTypeIdx=int32 -1\n"
        "ContainerVelTypeIdx=int32 -1\n",
        renderProperties(client, velType));
}

TEST_F(ModelClassBindings, FreshVelCGTypeReadsAsItsDefaults) {
    VelCGType cgType;
    EXPECT_EQ(
        "Name=''\n"
        "VelTypeIndex=int32 -1\n"
        "Width=int32 1\n"
        "SymbolicWidth='1'\n"
        "Constructor=''\n"
        "BaseIndex=int32 0\n"
        "Dimensions=int32[]\n"
        "SymbolicDimensions={}\n"
        "Bias=double 0\n"
        "Slope=double 0\n"
        "NBits=int32 0\n"
        "IsSigned=logical false\n"
        "Exponent=int32 0\n"
        "IsLoweredMultiword=logical false\n"
        "StructAlignment=int32 -1\n"
        "Members=<>\n"
        "EmbeddedType=[]\n",
        renderProperties(client, cgType));
}

TEST_F(ModelClassBindings, FreshCGTypeMemberReadsAsItsDefaults) {
    CGTypeMember member;
    EXPECT_EQ(
        "Name=''\n"
        "CGTypeIndex=int32 0\n"
        "Alignment=int32 -1\n",
        renderProperties(client, member));
}

struct Write {
    vel::mi::Handle* object;
    const char* key;
    tuvArrayPtr value;
};

// Every property a script may write, with a value other than the scene's.
std::vector<Write> writableProperties(Scene& s) {
    auto labels = tuvArray::cell(1, 2);
    labels->setCell(0, tuvArray::fromUtf8("A"));
    labels->setCell(1, tuvArray::fromUtf8("B"));
    return {
        {s.system, "Identifier", tuvArray::fromUtf8("id2")},
        {s.system, "GraphicalCallsites", tuvArray::objects({})},
        {s.system, "StartFcn", tuvArray::fromUtf8("s2")},
        {s.system, "OutputFcn", tuvArray::fromUtf8("o2")},
        {s.system, "UpdateFcn", tuvArray::fromUtf8("u2")},
        {s.system, "OutputUpdateFcn", tuvArray::fromUtf8("ou2")},
        {s.system, "IsModelReferenceBaseSystem", tuvArray::logical(true)},
        {s.velType, "ID", tuvArray::int32(12)},
        {s.velType, "CGTypeIdx", tuvArray::int32(3)},
        {s.velType, "ContainerCGTypeIdx", tuvArray::int32(4)},
        {s.velType, "ContainerVelTypeIdx", tuvArray::int32(5)},
        {&s.model, "SharedCodeManagerPath", tuvArray::fromUtf8("/other/\xc3\xa9")},
        {s.taq, "isFixedPoint", tuvArray::logical(true)},
        {s.taq, "isEnum", tuvArray::logical(true)},
        {s.taq, "dataTypeId", tuvArray::int32(9)},
        {s.taq, "dataTypeSize", tuvArray::int32(4)},
        {s.taq, "fxpNumericType", tuvArray::int32(2)},
        {s.taq, "fxpSignedness", tuvArray::uint32(1)},
        {s.taq, "fxpWordLength", tuvArray::int32(16)},
        {s.taq, "fxpFractionLength", tuvArray::int32(8)},
        {s.taq, "fxpSlopeAdjFactor", tuvArray::float64(1.25)},
        {s.taq, "fxpFixedExponent", tuvArray::int32(-3)},
        {s.taq, "fxpBias", tuvArray::float64(0.5)},
        {s.taq, "enumClassName", tuvArray::fromUtf8("Color")},
        {s.taq, "enumClassification", tuvArray::fromUtf8("native")},
        {s.taq, "enumLabels", labels},
        {s.taq, "enumValues", tuvArray::int32Vector({1, 2})},
        {s.taq, "isComplex", tuvArray::logical(true)},
        {s.taq, "isDiscete", tuvArray::logical(true)},
        {s.taq, "isVirtualBus", tuvArray::logical(true)},
        {s.taq, "isNVBus", tuvArray::logical(true)},
        {s.taq, "isVarDims", tuvArray::logical(true)},
        {s.taq, "dimensions", tuvArray::int32Vector({2, 2})},
        {s.taq, "blockPath", tuvArray::fromUtf8("m/Gain")},
        {s.taq, "blockSID", tuvArray::fromUtf8("m:5")},
        {s.taq, "portNumber", tuvArray::int32(1)},
        {s.taq, "signalName", tuvArray::fromUtf8("sig")},
        {s.taq, "actSrcBlockPath", tuvArray::fromUtf8("m/Src")},
        {s.taq, "actSrcBlockSID", tuvArray::fromUtf8("m:1")},
        {s.taq, "actSrcPortNumber", tuvArray::int32(2)},
        {s.taq, "actSrcDWorkName", tuvArray::fromUtf8("dw")},
        {s.taq, "actSrcStartElement", tuvArray::int32(3)},
        {s.taq, "signalSourceUUID", tuvArray::fromUtf8("uuid")},
        {s.taq, "signalSourceUUIDasInteger", tuvArray::int64(INT64_MAX)},
        {s.taq, "units", tuvArray::fromUtf8("m/s")},
        {s.taq, "uniqueId", tuvArray::uint32(UINT32_MAX)},
        {s.taq, "tid", tuvArray::int32(1)},
        {s.taq, "nvBusOffset", tuvArray::int64(-8)},
        {s.taq, "isLiveStreaming", tuvArray::logical(true)},
        {s.taq, "isDeferredStreaming", tuvArray::logical(true)},
    };
}

class ModelClassWrites : public ModelClassBindings {
protected:
    // Each write of object's writable properties reads back as written and
    // differs from what was there before.
    void expectWritesRoundTrip(vel::mi::Handle* object) {
        for (const auto& r : writableProperties(s)) {
            if (r.object != object) continue;
            const std::string before = render(*client.getProperty(r.object->makeRef(), r.key));
            client.setProperty(r.object->makeRef(), r.key, *r.value);
            const std::string after = render(*client.getProperty(r.object->makeRef(), r.key));
            EXPECT_EQ(render(*r.value), after) << r.key;
            EXPECT_NE(before, after) << r.key << ": the written value must differ from the old one";
        }
    }

    Scene s;
};

TEST_F(ModelClassWrites, SystemWritablePropertiesRoundTrip) {
    expectWritesRoundTrip(s.system);
    EXPECT_TRUE(s.system->getGraphicalCallsites().empty());
}

TEST_F(ModelClassWrites, VelTypeWritablePropertiesRoundTrip) { expectWritesRoundTrip(s.velType); }

TEST_F(ModelClassWrites, CGModelSharedCodeManagerPathRoundTrips) {
    expectWritesRoundTrip(&s.model);
    EXPECT_EQ(L"/other/\u00e9", s.model.getSharedCodeManagerPath());
}

TEST_F(ModelClassWrites, ToAsyncQueueBlockWritablePropertiesRoundTrip) {
    expectWritesRoundTrip(s.taq);
    EXPECT_TRUE(s.taq->getIsDiscrete()) << "\"isDiscete\" writes isDiscrete";
}

TEST_F(ModelClassWrites, LeafElementsWriteReordersTheLeaves) {
    const auto& leaves = s.taq->getLeafElements();
    // Leaves render alike by class; their order shows the write.
    client.setProperty(s.taq->makeRef(), "leafElements",
                       *tuvArray::objects({leaves[1]->makeRef(), leaves[0]->makeRef()}));
    ASSERT_EQ(2u, s.taq->getLeafElements().size());
    EXPECT_EQ(L"leaf2", s.taq->getLeafElements()[0]->getName());
}

TEST_F(ModelClassWrites, WritingEmbeddedTypeHasNoEffectAndIsReported) {
    const CG::EmbeddedType* embedded = s.cgType->getEmbeddedType();
    vel::diag::WarningCollector warnings;
    client.setProperty(s.cgType->makeRef(), "EmbeddedType", *tuvArray::empty());
    EXPECT_EQ(embedded, s.cgType->getEmbeddedType());
    ASSERT_EQ(1u, warnings.warnings().size());
    EXPECT_EQ("VelCG:Binding:IgnoredWrite", warnings.warnings()[0].identifier());
    EXPECT_EQ((std::vector<std::string>{"VelCGType", "int32_t", "EmbeddedType"}),
              warnings.warnings()[0].arguments());
    // Reading is not a write.
    client.getProperty(s.cgType->makeRef(), "EmbeddedType");
    EXPECT_EQ(1u, warnings.warnings().size());
}

TEST_F(ModelClassWrites, EveryOtherModelPropertyIsReadOnly) {
    std::map<std::string, std::set<std::string>> writable;
    for (const auto& r : writableProperties(s))
        writable[client.classOf(*r.object).getQualifiedName()].insert(r.key);
    writable["VelCG.ToAsyncQueueBlock"].insert("leafElements");
    // Only "EmbeddedType" of VelCGType is writable besides the rows above.
    writable["VelCG.VelCGType"].insert("EmbeddedType");

    const auto classes = korb::ObjectSystem::instance().getPackageClasses("VelCG");
    ASSERT_GE(classes.size(), 17u);
    for (std::size_t i = classes.size() - 17; i < classes.size(); ++i) {
        const auto& name = classes[i]->getQualifiedName();
        for (const auto& p : classes[i]->getProperties())
            EXPECT_EQ(writable[name].count(p.name) == 0, p.isReadOnly()) << name << "." << p.name;
    }
}

struct MethodCall {
    vel::mi::Handle* object;
    const char* name;
    std::vector<tuvArrayPtr> args;
    std::string rendered;
};

// Every script-visible method of the scene's objects, with its answer.
std::vector<MethodCall> methodCalls(Scene& s) {
    return {
        {s.system, "getName", {}, "''"},
        {s.system, "isRootSystem", {}, "logical false"},
        {s.system, "isReusableLibrarySubsystem", {}, "logical false"},
        {s.system, "isAtomic", {}, "logical false"},
        {s.system, "isCalledByBlock", {}, "logical false"},
        {s.system, "getSystemType", {}, "''"},
        {s.system, "isInlined", {}, "logical false"},
        {s.system, "isNonReusable", {}, "logical false"},
        {s.system, "isReusable", {}, "logical false"},
        {s.cgType, "getContainerTypeName", {}, "'int32_t'"},
        {&s.model, "getName", {}, "''"},
        {&s.model, "getVersion", {}, "''"},
        {&s.model, "getKordelCoderVersion", {}, "''"},
        {&s.model, "getKordelVersion", {}, "''"},
        {&s.model, "getSystemForFunction", {tuvArray::fromUtf8("f")}, "[]"},
        {&s.model, "serializeModel", {tuvArray::fromUtf8("unused")}, "[]"},
        {&s.model, "serializeModelAfterScriv", {tuvArray::fromUtf8("unused")}, "[]"},
        {s.velType, "getDTName", {}, "'int32'"},
        {s.velType, "isShared", {}, "logical false"},
        {s.velType, "isUserProvided", {}, "logical false"},
        {s.velType, "getDescription", {}, "'int32'"},
        {s.velType, "getIdAliasedTo", {}, "int32 -10"},
        {s.velType, "getIdAliasedThruTo", {}, "int32 -10"},
        {s.velType, "getHeaderFile", {}, "'int32'"},
        {s.velType, "isEnumType", {}, "logical false"},
        {s.velType, "isStructType", {}, "logical false"},
        {s.velType, "isBus", {}, "logical false"},
        {s.velType, "isAliasType", {}, "logical true"},
        {s.velType, "getName", {}, "'int32_t'"},
        {s.velType, "getComplexName", {}, "'cint32_t'"},
        {s.input, "getRecordIdentifier", {}, "'In1'"},
        {dynamic_cast<vel::mi::Handle*>(s.modelParameter), "getOriginalName", {}, "'Korig'"},
        {dynamic_cast<vel::mi::Handle*>(s.modelParameter), "getWorkspaceVarName", {}, "'Kws'"},
    };
}

class ModelClassMethods : public ModelClassBindings {
protected:
    // Each method of object answers as expected, and the calls cover every
    // method of its class in registration order.
    void expectMethodsAnswer(vel::mi::Handle* object) {
        // The serialization methods are called with nothing to write; their
        // effect is checked in CGModelSerialize_test.cpp.
        vel::feature::ScopedValue noSerialization(VELFEAT_VelCGDirectEmitSerialize, 0);
        std::vector<std::string> names;
        for (const auto& r : methodCalls(s)) {
            if (r.object != object) continue;
            EXPECT_EQ(r.rendered, render(*client.callMethod(r.object->makeRef(), r.name, r.args))) << r.name;
            names.push_back(r.name);
        }
        std::vector<std::string> registered;
        for (const auto& m : client.classOf(*object).getMethods()) registered.push_back(m.name);
        EXPECT_EQ(names, registered) << client.classOf(*object).getQualifiedName();
    }

    Scene s;
};

TEST_F(ModelClassMethods, SystemMethodsAnswerInRegistrationOrder) { expectMethodsAnswer(s.system); }

TEST_F(ModelClassMethods, VelCGTypeMethodsAnswerInRegistrationOrder) { expectMethodsAnswer(s.cgType); }

TEST_F(ModelClassMethods, CGModelMethodsAnswerInRegistrationOrder) { expectMethodsAnswer(&s.model); }

TEST_F(ModelClassMethods, VelTypeMethodsAnswerInRegistrationOrder) { expectMethodsAnswer(s.velType); }

TEST_F(ModelClassMethods, ExternalInputMethodsAnswerInRegistrationOrder) { expectMethodsAnswer(s.input); }

TEST_F(ModelClassMethods, ModelParameterMethodsAnswerInRegistrationOrder) {
    expectMethodsAnswer(dynamic_cast<vel::mi::Handle*>(s.modelParameter));
}

TEST_F(ModelClassMethods, SystemWithReusableCodeAnswersIsReusable) {
    s.system->setBriskSystemCode(2);
    EXPECT_EQ("logical true", render(*client.callMethod(s.system->makeRef(), "isReusable")));
}

TEST_F(ModelClassMethods, CGModelFindsTheSystemOfAFunction) {
    s.model.addFunctionForSystem("f", s.system);
    EXPECT_EQ(s.system,
              client.callMethod(s.model.makeRef(), "getSystemForFunction", {tuvArray::fromUtf8("f")})
                  ->handles()[0]
                  .get());
}

TEST_F(ModelClassBindings, ScriptsGiveASystemOnlyCallSitesItsOwnModelOwns) {
    CallSiteModel own, other;
    GraphicalBlock loose(new StoredGraphicalBlock(L"loose"));
    System alone;
    const struct {
        const char* what;
        System* system;
        std::vector<vel::mi::Handle*> blocks;
        const char* id;
        const char* after;
    } rows[] = {
        {"a block, an async-queue block and its leaf of the own model",
         own.system,
         {own.block, own.taq, own.leaf},
         "no diagnostic",
         "<VelCG.GraphicalBlock,VelCG.ToAsyncQueueBlock,VelCG.ToAsyncQueueBlock>"},
        {"an own block beside a block of another model",
         own.system,
         {own.block, other.block},
         kInvalidOwnershipId,
         "<>"},
        {"an async-queue block of another model", own.system, {other.taq}, kInvalidOwnershipId, "<>"},
        {"a leaf of another model", own.system, {other.leaf}, kInvalidOwnershipId, "<>"},
        {"a block of no model", own.system, {&loose}, kInvalidOwnershipId, "<>"},
        {"a block, for a system of no model", &alone, {own.block}, kNoModelId, "<>"},
        {"no block, for a system of no model", &alone, {}, "no diagnostic", "<>"},
    };
    for (const auto& r : rows) {
        r.system->setGraphicalCallsites({});
        std::vector<vel::mi::HandleRef> refs;
        for (vel::mi::Handle* b : r.blocks) refs.push_back(b->makeRef());
        EXPECT_EQ(r.id, diagnosticOf([&] {
                      client.setProperty(r.system->makeRef(), "GraphicalCallsites", *tuvArray::objects(refs));
                  }))
            << r.what;
        EXPECT_EQ(r.after, render(*client.getProperty(r.system->makeRef(), "GraphicalCallsites"))) << r.what;
    }
}

TEST_F(ModelClassBindings, CallSitesSetByAScriptNeverOutliveTheirBlocks) {
    CallSiteModel own;
    auto other = std::make_unique<CallSiteModel>();
    const auto foreign = tuvArray::objects({other->block->makeRef()});
    EXPECT_EQ(kInvalidOwnershipId, diagnosticOf([&] {
                  client.setProperty(own.system->makeRef(), "GraphicalCallsites", *foreign);
              }));
    other.reset();
    // Reading the list again must not reach the destroyed block.
    EXPECT_EQ("<>", render(*client.getProperty(own.system->makeRef(), "GraphicalCallsites")));
}

class ModelClassDiagnostics : public ModelClassBindings {
protected:
    Scene s;
};

TEST_F(ModelClassDiagnostics, MemberPositionPastTheEndIsAnIndexDiagnostic) {
    EXPECT_EQ(kIndexOutOfRangeId, diagnosticOf([&] {
                  s.input->setVarGroupIndex(0);
                  s.input->setVarGroupMemberIndex(5);
                  client.callMethod(s.input->makeRef(), "getRecordIdentifier");
              }));
}

TEST_F(ModelClassDiagnostics, VariableGroupPastTheEndIsAnIndexDiagnostic) {
    EXPECT_EQ(kIndexOutOfRangeId, diagnosticOf([&] {
                  s.input->setVarGroupIndex(9);
                  client.callMethod(s.input->makeRef(), "getRecordIdentifier");
              }));
}

TEST_F(ModelClassDiagnostics, TypeIndexPastTheEndIsAnIndexDiagnostic) {
    EXPECT_EQ(kIndexOutOfRangeId, diagnosticOf([&] {
                  VelType* t = new VelType("double");
                  t->setCGTypeIdx(4);
                  s.model.addVelType(std::unique_ptr<VelType>(t));
                  client.callMethod(t->makeRef(), "getName");
              }));
}

TEST_F(ModelClassDiagnostics, NegativeTypeIndexIsAnInvalidTypeDiagnostic) {
    EXPECT_EQ("VelCG:Type::InvalidCGType", diagnosticOf([&] {
                  VelType fresh("x");
                  fresh.setCGTypeIdx(-1);
                  client.callMethod(fresh.makeRef(), "getName");
              }));
}

TEST_F(ModelClassDiagnostics, SourceSubsystemPastTheEndIsAnIndexDiagnostic) {
    EXPECT_EQ(kIndexOutOfRangeId, diagnosticOf([&] {
                  s.outPort->setCGModel(&s.model);
                  s.outPort->setGrSrcPortIdx(3, 0, 0);
                  client.getProperty(s.outPort->makeRef(), "GraphicalSource");
              }));
}

TEST_F(ModelClassDiagnostics, ForeignLeafElementIsRefusedAndLeavesTheLeaves) {
    auto leafOfOther = std::make_unique<ToAsyncQueueBlock>(new StoredGraphicalBlock(L"x"));
    EXPECT_EQ(kInvalidOwnershipId, diagnosticOf([&] {
                  client.setProperty(s.taq->makeRef(), "leafElements",
                                     *tuvArray::objects({leafOfOther->makeRef()}));
              }));
    EXPECT_EQ(2u, s.taq->getLeafElements().size()) << "a refused write leaves the leaves unchanged";
}

TEST_F(ModelClassDiagnostics, DroppingALeafASystemListsAsACallSiteIsRefused) {
    EXPECT_EQ(kInvalidOwnershipId, diagnosticOf([&] {
                  const auto leaf = s.taq->getLeafElements()[0];
                  client.setProperty(s.system->makeRef(), "GraphicalCallsites",
                                     *tuvArray::objects({leaf->makeRef()}));
                  client.setProperty(s.taq->makeRef(), "leafElements",
                                     *tuvArray::objects({s.taq->getLeafElements()[1]->makeRef()}));
              }))
        << "dropped leaf element, which a system still lists as a call site";
    EXPECT_EQ(2u, s.taq->getLeafElements().size()) << "a refused write leaves the leaves unchanged";
    EXPECT_EQ("<VelCG.ToAsyncQueueBlock>",
              render(*client.getProperty(s.system->makeRef(), "GraphicalCallsites")));
}

TEST_F(ModelClassDiagnostics, CyclicMatrixTypeIsACyclicTypeDiagnostic) {
    EXPECT_EQ(kCyclicTypeId, diagnosticOf([&] {
                  auto* m = new VelCGType();
                  m->setConstructor("matrix");
                  m->setBaseIndex(1);
                  s.model.addVelCGType(std::unique_ptr<VelCGType>(m));
                  client.callMethod(m->makeRef(), "getContainerTypeName");
              }));
}

} // namespace
