#pragma once

// One model holding an object of every script-visible model class, and a
// file repository holding one file of every kind, for tests that walk the
// whole object graph the way scripts see it.

#include <memory>
#include <string>
#include <vector>

#include "CG/DataInterface.hpp"
#include "CG/Type.hpp"
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

// The model "every_kind":
//   root subsystem "every_kind" with the blocks In1 (inport), Gain, Sub (a
//     subsystem block with one control input port) and Out1 (outport);
//   child subsystem "Sub" (atomic, its subsystem block is root block 2)
//     holding the reduced block Inner.
// Gain has an input port whose source is In1's output port, an output port
// with one region, parameter K with model parameter K, a continuous state, a
// derivative, a discrete state without data interface and a dwork. System 0
// has Gain as its call site; one async-queue block has two leaves.
struct EveryKindModel {
    VelCG::CGModel model;
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

    EveryKindModel() {
        using namespace VelCG;
        std::unique_ptr<CGModelFactory> factory(GetCGModelFactory());
        // Three data interfaces, told apart by their identifiers.
        const auto stateData =
            dataInterface({"model_State.x", "StructElement", "model_State", "double", "Gain"});
        const auto signalData =
            dataInterface({"model_Signals.y", "StructElement", "model_Signals", "double", "y"});
        const auto parameterData = dataInterface({"model_P.K", "StructElement", "model_P", "double", "K"});

        auto sys = std::make_unique<System>();
        system = sys.get();
        system->setIdentifier("every_kind_step");
        system->setStartFcn("start");
        system->setOutputFcn("output");
        system->setUpdateFcn("update");
        system->setOutputUpdateFcn("step");
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
        group->setSystemIndex(0);
        group->setCGTypeIndex(0);
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
        input->setPadding(4);
        model.addExternalInput(std::move(in));

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
        inImpl->setType(L"Inport");
        inImpl->setIsInport(true);
        inImpl->addDataOutputPort(std::make_unique<Port>());
        inport = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(inImpl));

        auto impl = new StoredGraphicalBlock(L"Gain");
        impl->setVelName(L"every_kind/Gain");
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
        subImpl->setType(L"SubSystem");
        subImpl->setIsSubsystem(true);
        subImpl->addControlInputPort(std::make_unique<Port>());
        subsystemBlock = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(subImpl));

        auto outImpl = new StoredGraphicalBlock(L"Out1");
        outImpl->setType(L"Outport");
        outImpl->setIsOutport(true);
        outImpl->addDataInputPort(std::make_unique<Port>());
        outport = root->addGraphicalBlock(std::make_unique<GraphicalBlock>(outImpl));

        auto childSubsystem =
            std::make_unique<StoredGraphicalSubsystem>(L"Sub", GraphicalSubsystemType::Atomic);
        child = childSubsystem.get();
        child->setSubsystemBlockIndex({0, 2});
        auto innerImpl = new StoredGraphicalBlock(L"Inner");
        innerImpl->setIsReduced(true);
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
        for (const wchar_t* name : {L"leaf1", L"leaf2"}) {
            leaves.push_back(new ToAsyncQueueBlock(new StoredGraphicalBlock(name)));
            queue->addLeafElement(leaves.back());
        }
        model.addTAQBlock(std::move(q));

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

} // namespace testing_support
