#include "ExampleModel.hpp"

#include "CG/DataInterface.hpp"
#include "CG/Type.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"
#include "velcg/StoredSystem.hpp"
#include "velcg/System.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

namespace example {

using namespace VelCG;

namespace {

// Type indices in the model's code-generation type list.
enum TypeIndex { kReal = 0, kInt32, kBoolean, kExtU, kExtY, kDW, kP };

void addCGType(CGModel& model, const std::string& name, int velType,
               std::initializer_list<std::pair<const char*, int>> members, const CG::Type& irType) {
    auto type = std::make_unique<VelCGType>(name);
    type->setVelTypeIndex(velType);
    for (const auto& [memberName, memberType] : members) {
        auto m = std::make_unique<CGTypeMember>();
        m->setName(memberName);
        m->setCGTypeIndex(memberType);
        type->addMember(std::move(m));
    }
    type->setEmbeddedTypeFromCGType(irType);
    model.addVelCGType(std::move(type));
}

void addVarGroup(CGModel& model, VarGroupEnum category, const std::string& name, const std::string& instance,
                 int cgType, std::initializer_list<const char*> elements) {
    auto group = std::make_unique<VarGroup>();
    group->setName(name);
    group->setCategory(category);
    group->setNonReusedName(instance);
    group->setSystemIndex(0);
    group->setCGTypeIndex(cgType);
    group->setHasElement("yes");
    for (const char* e : elements) group->addElement(e);
    model.addVarGroup(std::move(group));
}

// A port whose single region is supplied by `source` in generated code.
std::unique_ptr<Port> port(const CGModel& model, const std::string& source, const std::wstring& label = L"") {
    auto p = std::make_unique<Port>();
    p->setCGModel(&model);
    p->setSignalLabel(label);
    auto region = std::make_unique<Region>();
    region->setSource(source);
    p->addRegion(std::move(region));
    return p;
}

std::unique_ptr<StoredGraphicalBlock> block(const CGModel& model, const std::wstring& name,
                                            const std::wstring& type, const std::wstring& sid) {
    auto b = std::make_unique<StoredGraphicalBlock>(name);
    b->setVelName(name);
    b->setType(type);
    b->setSID(sid);
    b->setBlockPath(L"gain_model/" + name);
    b->setCGModel(&model);
    return b;
}

} // namespace

std::unique_ptr<CGModel> buildGainModel() {
    // The identity queries that a code generator answers in classes of its
    // own are stored fields here.
    auto model = std::make_unique<StoredCGModel>(L"gain_model");
    model->setVersion(L"1.4");
    model->setModelReferenceTargetType("NONE");
    model->setMaxMultiWordBits(128);

    // Data types as the modelling environment knows them ...
    int cgIndex = 0;
    for (const char* dt : {"double", "int32", "boolean"}) {
        auto type = std::make_unique<VelType>(dt);
        type->setCGTypeIdx(cgIndex++);
        model->addVelType(std::move(type));
    }

    // ... and as generated code sees them.
    auto real = CG::Type::floating("double", 64);
    addCGType(*model, "double", 0, {}, *real);
    addCGType(*model, "int32_t", 1, {}, *CG::Type::integer("int32_t", 32, true));
    addCGType(*model, "bool", 2, {}, *CG::Type::boolean());
    addCGType(*model, "gain_model_Inputs", -1, {{"In1", kReal}},
              *CG::Type::structure("gain_model_Inputs", {{"In1", real}}));
    addCGType(*model, "gain_model_Outputs", -1, {{"Out1", kReal}},
              *CG::Type::structure("gain_model_Outputs", {{"Out1", real}}));
    addCGType(*model, "gain_model_State", -1, {{"delay_state", kReal}},
              *CG::Type::structure("gain_model_State", {{"delay_state", real}}));
    addCGType(*model, "gain_model_Params", -1, {{"K", kReal}},
              *CG::Type::structure("gain_model_Params", {{"K", real}}));

    auto root = std::make_unique<StoredSystem>("gain_model");
    root->setIsRootSystem(true);
    root->setSystemType("root");
    root->setIdentifier("gain_model");
    root->setStartFcn("gain_model_initialize");
    root->setOutputUpdateFcn("gain_model_step");
    root->setBriskSystemCode(1);
    System* rootSystem = root.get();
    model->addSystem(std::move(root));
    model->addFunctionForSystem("gain_model_step", rootSystem);
    model->addFunctionForSystem("gain_model_initialize", rootSystem);

    addVarGroup(*model, VarGroupEnum::ExternalInput, "gain_model_Inputs", "gain_model_In", kExtU, {"In1"});
    addVarGroup(*model, VarGroupEnum::ExternalOutput, "gain_model_Outputs", "gain_model_Out", kExtY,
                {"Out1"});
    addVarGroup(*model, VarGroupEnum::DWork, "gain_model_State", "gain_model_X", kDW, {"delay_state"});
    addVarGroup(*model, VarGroupEnum::Parameter, "gain_model_Params", "gain_model_Prm", kP, {"K"});

    auto in1 = std::make_unique<VelCG::ExternalInput>();
    in1->setCGTypeIndex(kReal);
    in1->setStorageClass(0, "Auto");
    in1->setVarGroupIndex(0);
    in1->setVarGroupMemberIndex(0);
    model->addExternalInput(std::move(in1));

    // The graphical model: one root subsystem with five blocks.
    std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
    auto subsystem = std::make_unique<StoredGraphicalSubsystem>(L"gain_model", GraphicalSubsystemType::Root);
    subsystem->setSID(L"gain_model");

    auto inport = block(*model, L"In1", L"Inport", L"gain_model:1");
    inport->setIsInport(true);
    inport->addDataOutputPort(port(*model, "gain_model_In.In1", L"u"));

    auto gain = block(*model, L"Gain", L"Gain", L"gain_model:2");
    gain->addDataInputPort(port(*model, "gain_model_In.In1", L"u"));
    gain->addDataOutputPort(port(*model, "sig_gain"));
    auto k = std::make_unique<StoredModelParameter>(L"K");
    k->setIsTunable(true);
    k->setIsWorkspaceVar(true);
    k->setWorkspaceVarName(L"K");
    CG::DataInterface* kInterface =
        CG::DataInterface::create({"gain_model_Prm.K", "StructElement", "gain_model_Prm", "double", "Gain"});
    k->setDataInterface(kInterface);
    kInterface->release();
    std::unique_ptr<ModelParameter> kParameter(factory->createModelParameter(k.release()));
    auto gainValue = std::make_unique<StoredParameter>(L"Gain");
    gainValue->addModelParameter(kParameter.get());
    gain->addParameter(std::unique_ptr<VelCG::Parameter>(factory->createParameter(gainValue.release())));

    auto delay = block(*model, L"Unit Delay", L"UnitDelay", L"gain_model:3");
    delay->addDataInputPort(port(*model, "sig_sum"));
    delay->addDataOutputPort(port(*model, "gain_model_X.delay_state"));
    CG::DataInterface* state = CG::DataInterface::create(
        {"gain_model_X.delay_state", "StructElement", "gain_model_X", "double", "Unit Delay"});
    delay->addDiscreteState(std::unique_ptr<DataInterfaceRecord>(
        factory->createDataInterfaceRecord(new StoredDataInterfaceRecord(state))));
    state->release();

    auto sum = block(*model, L"Sum", L"Sum", L"gain_model:4");
    sum->addDataInputPort(port(*model, "sig_gain"));
    sum->addDataInputPort(port(*model, "gain_model_X.delay_state"));
    sum->addDataOutputPort(port(*model, "sig_sum", L"y"));

    auto outport = block(*model, L"Out1", L"Outport", L"gain_model:5");
    outport->setIsOutport(true);
    outport->addDataInputPort(port(*model, "sig_sum", L"y"));

    for (auto* b : {inport.release(), gain.release(), delay.release(), sum.release(), outport.release()})
        subsystem->addGraphicalBlock(std::make_unique<GraphicalBlock>(b));
    model->getBlockHierarchyMap()->addGraphicalSubsystem(std::move(subsystem));
    model->getBlockHierarchyMap()->finalize();

    // The gain block refers to K; the model owns it.
    model->addModelParameter(std::move(kParameter));
    model->setOverwritableIOPair(0, 0);
    return model;
}

} // namespace example
