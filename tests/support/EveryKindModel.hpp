#pragma once

// One model holding an object of every script-visible model class, and a
// file repository holding one file of every kind, for tests that walk the
// whole object graph the way scripts see it.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "CG/DataInterface.hpp"
#include "CG/Type.hpp"
#include "korb/Client.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/State.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/StoredCoderDataGroup.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"
#include "velcg/System.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

namespace testing_support {

// The model "every_kind" (version 9.1):
//   root subsystem "every_kind" with the blocks In1 (inport), Gain, Sub (a
//     subsystem block with one control input port) and Out1 (outport);
//   child subsystem "Sub" (atomic, its subsystem block is root block 2)
//     holding the reduced block Inner.
// In1's output port has a region; Gain has an input port whose source is
// In1's output port, an output port with one region, parameter K with model
// parameter K, a continuous state, a derivative, a discrete state without
// data interface and a dwork; Inner's input port's source is Gain's output
// port, its parameter has model parameter x0, of no block. System 0 has
// Gain as its call site. Root input In1 names itself, root input 1 is named
// by the member of its variable group. One async-queue block, a virtual
// bus, has two leaves, the first with a leaf of its own; the block, its
// first leaf and that leaf's leaf name Gain, Inner and In1 as their actual
// sources. Three coder data groups, one of each structure kind (group
// "Signals" is the one of the variable group); two overwritable
// input-output pairs. Model is StoredCGModel or a class derived from it,
// constructed from the arguments.
template <class Model = VelCG::StoredCGModel>
struct BasicEveryKindModel {
    Model model;
    VelCG::System* system = nullptr;
    VelCG::VelCGType* cgType = nullptr;
    VelCG::CGTypeMember* member = nullptr;
    VelCG::VarGroup* group = nullptr;
    VelCG::VelType* velType = nullptr;
    VelCG::ExternalInput* input = nullptr;
    VelCG::GraphicalSubsystem* root = nullptr;
    VelCG::GraphicalSubsystem* child = nullptr;
    VelCG::GraphicalBlock* inport = nullptr;
    VelCG::GraphicalBlock* block = nullptr;
    VelCG::GraphicalBlock* subsystemBlock = nullptr;
    VelCG::GraphicalBlock* outport = nullptr;
    VelCG::GraphicalBlock* inner = nullptr;
    VelCG::Port* inPort = nullptr;
    VelCG::Port* outPort = nullptr;
    VelCG::Region* region = nullptr;
    vel::mi::Handle* parameter = nullptr;
    vel::mi::Handle* modelParameter = nullptr;
    VelCG::State* state = nullptr;
    vel::mi::Handle* discreteState = nullptr;
    vel::mi::Handle* dWork = nullptr;
    VelCG::ToAsyncQueueBlock* queue = nullptr;
    std::vector<VelCG::ToAsyncQueueBlock*> leaves;

    template <class... Args>
    explicit BasicEveryKindModel(Args&&... args) : model(std::forward<Args>(args)...) {
        using namespace VelCG;
        std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
        // Three data interfaces, told apart by their identifiers.
        const auto stateData =
            dataInterface({"model_State.x", "StructElement", "model_State", "double", "Gain"});
        const auto signalData =
            dataInterface({"model_Signals.y", "StructElement", "model_Signals", "double", "y"});
        const auto parameterData = dataInterface({"model_P.K", "StructElement", "model_P", "double", "K"});
        const auto inputData = dataInterface({"model_U.In1", "StructElement", "model_U", "int32_t", "In1"});
        model.setName(L"every_kind");
        model.setKordelVersion(L"9.1");

        system = new System();
        model.addSystem(std::unique_ptr<System>(system));
        system->setIdentifier("every_kind_step");
        system->setStartFcn("start");
        system->setOutputFcn("output");
        system->setUpdateFcn("update");
        system->setOutputUpdateFcn("step");

        cgType = new VelCGType("int32_t");
        model.addVelCGType(std::unique_ptr<VelCGType>(cgType));
        cgType->setVelTypeIndex(0);
        cgType->setDimensions({2, 3});
        cgType->setSymbolicDimensions({"N", "M"});
        cgType->setSlope(1.5);
        cgType->setNBits(32);
        cgType->setIsSigned(true);
        cgType->setEmbeddedTypeFromCGType(*CG::Type::integer("int32_t", 32, true));
        cgType->addMember(std::make_unique<CGTypeMember>("u1", 0, 4));
        member = cgType->getMembers()[0];

        group = new VarGroup();
        model.addVarGroup(std::unique_ptr<VarGroup>(group));
        group->setName("model_State");
        group->setCategory(VarGroupEnum::DWork);
        group->setLocalName("localState");
        group->setSystemIndex(0);
        group->setCGTypeIndex(0);
        group->setGlobalOffset(8);
        group->setCoderGroupIndex(0);
        group->setElements({"a", "b"});
        group->addSubStructName("S");
        group->addSubStructIndex(1);

        velType = new VelType("int32");
        model.addVelType(std::unique_ptr<VelType>(velType));
        velType->setID(7);

        input = new ExternalInput();
        model.addExternalInput(std::unique_ptr<ExternalInput>(input));
        input->setCGTypeIndex(0);
        input->setStorageClass(2, "Auto");
        input->setIdentifier("In1");
        input->setPadding(4);
        auto byMember = std::make_unique<ExternalInput>();
        byMember->setVarGroupIndex(0);
        byMember->setVarGroupMemberIndex(0);
        model.addExternalInput(std::move(byMember));

        auto mpImpl = new StoredModelParameter(L"K");
        mpImpl->setIsTunable(true);
        mpImpl->setOriginalName(L"Korig");
        mpImpl->setWorkspaceVarName(L"Kws");
        mpImpl->setDataInterface(parameterData.get());
        ModelParameter* mp = factory->createModelParameter(mpImpl);
        modelParameter = dynamic_cast<vel::mi::Handle*>(mp);
        model.addModelParameter(std::unique_ptr<ModelParameter>(mp));

        auto rootSubsystem =
            std::make_unique<StoredGraphicalSubsystem>(L"every_kind", GraphicalSubsystemType::Root);
        root = rootSubsystem.get();

        auto inImpl = new StoredGraphicalBlock(L"In1");
        inImpl->setCGModel(&model);
        inImpl->setType(L"Inport");
        inImpl->setIsInport(true);
        inImpl->setBlockPath(L"every_kind/In1");
        auto inRegion = std::make_unique<Region>();
        inRegion->setDataInterface(inputData.get());
        inImpl->addDataOutputPort(std::make_unique<Port>())->addRegion(std::move(inRegion));
        inport = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(inImpl));

        auto impl = new StoredGraphicalBlock(L"Gain");
        impl->setCGModel(&model);
        impl->setVelName(L"every_kind/Gain");
        impl->setBlockPath(L"every_kind/Gain");
        impl->setSID(L"every_kind:5");
        impl->setType(L"Gain");
        impl->setDescription(L"scales its input");
        impl->setVirtual(BlockVirtuality::Virtual);
        impl->setRLSCommentName("rls");
        inPort = impl->addDataInputPort(std::make_unique<Port>());
        inPort->setCGModel(&model);
        inPort->setGrSrcPortIdx(0, 0, 0);
        outPort = impl->addDataOutputPort(std::make_unique<Port>());
        outPort->setSignalLabel(L"y");
        outPort->setTestPoint(true);
        auto r = std::make_unique<Region>();
        region = r.get();
        region->setSource("model_Signals.y");
        region->setOffset(2);
        region->setDataInterface(signalData.get());
        outPort->addRegion(std::move(r));
        parameter = dynamic_cast<vel::mi::Handle*>(impl->addParameter(
            std::unique_ptr<Parameter>(factory->createParameter(new StoredParameter(L"K", {mp})))));
        state = impl->addContinuousState(std::make_unique<State>(std::vector<int>{3}));
        impl->addDerivative(std::make_unique<State>(std::vector<int>{3}));
        discreteState =
            dynamic_cast<vel::mi::Handle*>(impl->addDiscreteState(std::unique_ptr<DataInterfaceRecord>(
                factory->createDataInterfaceRecord(new StoredDataInterfaceRecord()))));
        dWork = dynamic_cast<vel::mi::Handle*>(impl->addDWork(std::unique_ptr<DataInterfaceRecord>(
            factory->createDataInterfaceRecord(new StoredDataInterfaceRecord(stateData.get())))));
        block = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(impl));

        auto subImpl = new StoredGraphicalBlock(L"Sub");
        subImpl->setCGModel(&model);
        subImpl->setType(L"SubSystem");
        subImpl->setIsSubsystem(true);
        subImpl->addControlInputPort(std::make_unique<Port>());
        subsystemBlock = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(subImpl));

        auto outImpl = new StoredGraphicalBlock(L"Out1");
        outImpl->setCGModel(&model);
        outImpl->setType(L"Outport");
        outImpl->setIsOutport(true);
        outImpl->addDataInputPort(std::make_unique<Port>());
        outport = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(outImpl));

        auto childSubsystem =
            std::make_unique<StoredGraphicalSubsystem>(L"Sub", GraphicalSubsystemType::Atomic);
        child = childSubsystem.get();
        child->setSubsystemBlockIndex({0, 2});
        auto innerImpl = new StoredGraphicalBlock(L"Inner");
        innerImpl->setCGModel(&model);
        innerImpl->setIsReduced(true);
        innerImpl->setBlockPath(L"every_kind/Sub/Inner");
        auto* x0 = factory->createModelParameter(new StoredModelParameter(L"x0"));
        model.addModelParameter(std::unique_ptr<ModelParameter>(x0));
        innerImpl->addParameter(std::unique_ptr<Parameter>(
            factory->createParameter(new StoredParameter(L"InitialCondition", {x0}))));
        Port* innerPort = innerImpl->addDataInputPort(std::make_unique<Port>());
        innerPort->setCGModel(&model);
        innerPort->setGrSrcPortIdx(0, 1, 0);
        inner = child->addGraphicalBlock(std::make_unique<GraphicalBlock>(innerImpl));

        model.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(rootSubsystem));
        model.getBlockHierarchyMap()->addGraphicalSubsystem(std::move(childSubsystem));
        model.getBlockHierarchyMap()->finalize();

        system->addGraphicalCallsite(block);
        mpImpl->setGraphicalSource(block);
        mpImpl->addGraphicalReference(block);

        auto q = std::make_unique<ToAsyncQueueBlock>(new StoredGraphicalBlock(L"Queue"));
        queue = q.get();
        queue->setBlockPath(L"every_kind/Queue");
        queue->setPortNumber(1);
        queue->setIsVirtualBus(true);
        queue->setActSrcBlockPath(L"every_kind/Gain");
        for (const wchar_t* name : {L"leaf1", L"leaf2"}) {
            leaves.push_back(new ToAsyncQueueBlock(new StoredGraphicalBlock(name)));
            queue->addLeafElement(leaves.back());
        }
        leaves[0]->setActSrcBlockPath(L"every_kind/Sub/Inner");
        auto* deep = new ToAsyncQueueBlock(new StoredGraphicalBlock(L"deep"));
        deep->setActSrcBlockPath(L"every_kind/In1");
        deep->setEnumLabels({L"Park", L"Drive"});
        deep->setEnumValues({0, 3});
        deep->setDimensions({2, 1});
        leaves[0]->addLeafElement(deep);
        model.addTAQBlock(std::move(q));

        auto signals = std::make_unique<StoredCoderDataGroup>("Signals", &model);
        signals->setAsStructure(CoderDataGroup::AsStructure::Standalone);
        signals->setStructureTypeNameRule("$N_signals");
        model.appendCoderDataGroup(std::move(signals));
        auto self = std::make_unique<StoredCoderDataGroup>("Self", &model);
        self->setSelfGroup(true);
        self->setAsStructure(CoderDataGroup::AsStructure::InSelf);
        self->setRootGroupTypeName("every_kind_self");
        model.appendCoderDataGroup(std::move(self));
        auto loose = std::make_unique<StoredCoderDataGroup>("Loose", &model);
        loose->setAsStructure(CoderDataGroup::AsStructure::None);
        model.appendCoderDataGroup(std::move(loose));
        model.setOverwritableIOPair(2, 0);
        model.setOverwritableIOPair(0, 1);

        model.setSubsystemPathForRightClickBuild("every_kind/Sub");
        model.setSubsystemNameForRightClickBuild("Sub");
        model.setNumChildSFunctions(2);
        model.setMaxMultiWordBits(128);
        model.setSharedCodeManagerPath(L"/shared");
    }

private:
    // The elements take their own references; this one goes with the builder.
    struct Release {
        void operator()(CG::DataInterface* d) const { d->release(); }
    };
    static std::unique_ptr<CG::DataInterface, Release> dataInterface(CG::DataInterface::Description d) {
        return std::unique_ptr<CG::DataInterface, Release>(CG::DataInterface::create(std::move(d)));
    }
};

using EveryKindModel = BasicEveryKindModel<>;

// A repository with one file of each kind, in this order:
//   0 "every_kind.h" (module header), 1 "every_kind.c" (module source),
//   2 "every_kind_types.h" (data types), 3 "main.c" (generic).
struct EveryKindRepository {
    VelCG::VelCGFileRepository repository;
    VelCG::VelCGModuleFile& header = repository.createModuleHeaderFile("every_kind.h", {0});
    VelCG::VelCGModuleFile& source = repository.createModuleSourceFile("every_kind.c", {0});
    VelCG::VelCGDataTypesFile& types = repository.createDataTypesFile("every_kind_types.h");
    VelCG::VelCGGenericFile& generic = repository.createGenericFile("main.c");
};

// Every object of the model and the repository that scripts reach, one of
// each class first (a plain block before the async-queue blocks that derive
// from it), then the leaves and three sections of the header.
template <class Model>
std::vector<vel::mi::Handle*> everyObject(BasicEveryKindModel<Model>& m, EveryKindRepository& r) {
    std::vector<vel::mi::Handle*> out{
        &m.model,         m.system,  m.cgType,        m.member,
        m.group,          m.velType, m.input,         m.model.getBlockHierarchyMap(),
        m.root,           m.child,   m.block,         m.inport,
        m.subsystemBlock, m.outport, m.inner,         m.inPort,
        m.outPort,        m.region,  m.parameter,     m.state,
        m.modelParameter, m.dWork,   m.discreteState, m.queue,
        &r.repository,    &r.header, &r.source,       &r.types,
        &r.generic};
    out.insert(out.end(), m.leaves.begin(), m.leaves.end());
    for (VelCG::VelCGFileSectionKind kind :
         {VelCG::TYPEDEFS_SECTION, VelCG::INCLUDES_SECTION, VelCG::FUNCTIONS_SECTION})
        out.push_back(&r.header.getFileSection(kind));
    return out;
}

// The position in `objects` of the object that stands for cls: the first of
// exactly that class, or for an abstract class the first deriving from it;
// objects.size() when there is none.
inline std::size_t subjectOf(const korb::Client& client, const vel::mi::HandleClass& cls,
                             const std::vector<vel::mi::Handle*>& objects) {
    std::size_t i = 0;
    while (i < objects.size() && (cls.isAbstract() ? !client.isA(*objects[i], cls.getQualifiedName())
                                                   : &client.classOf(*objects[i]) != &cls))
        ++i;
    return i;
}

} // namespace testing_support
