#include <algorithm>
#include <functional>
#include <unordered_set>

#include "BackgroundSerialization.hpp"
#include "ClassBindings.hpp"
#include "Messages.hpp"
#include "korb/ClassInfo.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/State.hpp"
#include "velcg/System.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"
#include "velcg/VelType.hpp"

namespace VelCG::binding {

namespace {

using korb::ClassInfo;
using korb::getter;
using korb::getterFn;
using korb::kHeterogeneous;
using korb::method;
using korb::setter;
using korb::setterFn;

// Every block that model owns: the blocks of its hierarchy map's subsystems,
// its async-queue blocks and, recursively, their leaves.
std::unordered_set<const GraphicalBlock*> blocksOwnedBy(const CGModel& model) {
    std::unordered_set<const GraphicalBlock*> owned;
    for (const GraphicalSubsystem* subsystem : model.getBlockHierarchyMap()->getSubsystems())
        owned.insert(subsystem->getBlocks().begin(), subsystem->getBlocks().end());
    std::vector<const ToAsyncQueueBlock*> queued(model.getTAQBlocks().begin(), model.getTAQBlocks().end());
    while (!queued.empty()) {
        const ToAsyncQueueBlock* block = queued.back();
        queued.pop_back();
        owned.insert(block);
        queued.insert(queued.end(), block->getLeafElements().begin(), block->getLeafElements().end());
    }
    return owned;
}

// A system does not own its call sites, and a script could otherwise name a
// block of another model that dies first, leaving the system pointing at freed
// memory. Scripts may therefore only name blocks that the system's own model
// owns, which live as long as the system.
void setGraphicalCallsitesFromScript(System& system, const std::vector<GraphicalBlock*>& blocks) {
    if (!blocks.empty()) {
        const CGModel* model = system.getCGModel();
        if (!model) throwNoModel("A system whose call sites a script sets");
        const auto owned = blocksOwnedBy(*model);
        for (GraphicalBlock* block : blocks)
            if (!owned.count(block))
                throwInvalidOwnership("The block '" + vel::i18n::toUtf8(block->getName()) +
                                      "' cannot be a call site of the system: scripts can only give a "
                                      "system blocks of its own model.");
    }
    system.setGraphicalCallsites(blocks);
}

std::unique_ptr<ClassInfo> systemClass() {
    return ClassInfo::make("System", "VelCG System object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Identifier", getter(&System::getIdentifier), setter(&System::setIdentifier));
        c.property("GraphicalCallsites", getter(&System::getGraphicalCallsites),
                   setterFn<System, std::vector<GraphicalBlock*>>(&setGraphicalCallsitesFromScript))
            .holds("VelCG.GraphicalBlock");
        c.property("StartFcn", getter(&System::getStartFcn), setter(&System::setStartFcn));
        c.property("OutputFcn", getter(&System::getOutputFcn), setter(&System::setOutputFcn));
        c.property("UpdateFcn", getter(&System::getUpdateFcn), setter(&System::setUpdateFcn));
        c.property("OutputUpdateFcn", getter(&System::getOutputUpdateFcn),
                   setter(&System::setOutputUpdateFcn));
        c.property("IsModelReferenceBaseSystem", getter(&System::isModelReferenceBaseSystem),
                   setter(&System::setIsModelReferenceBaseSystem));
        c.method("getName", method(&System::getName));
        c.method("isRootSystem", method(&System::isRootSystem));
        c.method("isReusableLibrarySubsystem", method(&System::isReusableLibrarySubsystem));
        c.method("isAtomic", method(&System::isAtomic));
        c.method("isCalledByBlock", method(&System::isCalledByBlock));
        c.method("getSystemType", method(&System::getSystemType));
        c.method("isInlined", method(&System::isInlined));
        c.method("isNonReusable", method(&System::isNonReusable));
        c.method("isReusable", method(&System::isReusable));
    });
}

std::unique_ptr<ClassInfo> velCGTypeClass() {
    return ClassInfo::make("VelCGType", "VelCG Type", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Name", getter(&VelCGType::getName));
        c.property("VelTypeIndex", getter(&VelCGType::getVelTypeIndex));
        c.property("Width", getter(&VelCGType::getWidth));
        c.property("SymbolicWidth", getter(&VelCGType::getSymbolicWidth));
        c.property("Constructor", getter(&VelCGType::getConstructor));
        c.property("BaseIndex", getter(&VelCGType::getBaseIndex));
        c.property("Dimensions", getter(&VelCGType::getDimensions));
        c.property("SymbolicDimensions", getter(&VelCGType::getSymbolicDimensions));
        c.property("Bias", getter(&VelCGType::getBias));
        c.property("Slope", getter(&VelCGType::getSlope));
        c.property("NBits", getter(&VelCGType::getNBits));
        c.property("IsSigned", getter(&VelCGType::isSigned));
        c.property("Exponent", getter(&VelCGType::getExponent));
        c.property("IsLoweredMultiword", getter(&VelCGType::isLoweredMultiword));
        c.property("StructAlignment", getter(&VelCGType::getStructAlignment));
        c.property("Members", getter(&VelCGType::getMembers)).holds("VelCG.CGTypeMember");
        // Scripts may write the property, without effect; the write is
        // reported so that it is not lost unnoticed.
        c.property("EmbeddedType", getter(&VelCGType::getEmbeddedTypeAsTuvArray),
                   setterFn<VelCGType, tuvArray>([](VelCGType& type, const tuvArray& value) {
                       type.setEmbeddedTypeFromTuvArray(value);
                       vel::diag::warn(messages::Binding::IgnoredWrite,
                                       {"VelCGType", type.getName(), "EmbeddedType"});
                   }));
        c.method("getContainerTypeName", method(&VelCGType::getContainerTypeName));
    });
}

std::unique_ptr<ClassInfo> cgTypeMemberClass() {
    return ClassInfo::make("CGTypeMember", "VelCGType member", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Name", getter(&CGTypeMember::getName));
        c.property("CGTypeIndex", getter(&CGTypeMember::getCGTypeIndex));
        c.property("Alignment", getter(&CGTypeMember::getAlignment));
    });
}

std::unique_ptr<ClassInfo> cgModelClass() {
    return ClassInfo::make("CGModel", "CGModel object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Systems", getter(&CGModel::getSystems)).holds("VelCG.System");
        c.property("BlockHierarchyMap", getter(&CGModel::korb_getBlockHierarchyMap))
            .holds("VelCG.BlockHierarchyMap");
        c.property("CGTypes", getter(&CGModel::getVelCGTypes)).holds("VelCG.VelCGType");
        c.property("VarGroups", getter(&CGModel::getVarGroups)).holds("VelCG.VarGroup");
        c.property("VelTypes", getter(&CGModel::getVelTypes)).holds("VelCG.VelType");
        c.property("ExternalInputs", getter(&CGModel::getExternalInputs_korb)).holds("VelCG.ExternalInput");
        c.property("TAQBlocks", getter(&CGModel::getTAQBlocks)).holds("VelCG.ToAsyncQueueBlock");
        c.property("SubsystemPathForRightClickBuild", getter(&CGModel::getSubsystemPathForRightClickBuild));
        c.property("SubsystemNameForRightClickBuild", getter(&CGModel::getSubsystemNameForRightClickBuild));
        c.property("ModelReferenceTargetType", getter(&CGModel::getModelReferenceTargetType));
        c.property("NumChildSFunctions", getter(&CGModel::getNumChildSFunctions));
        c.property("IsQuayTarget", getter(&CGModel::getIsQuayTarget));
        c.property("IsGeneratingToSharedLocation", getter(&CGModel::getIsGeneratingTosharedLocation));
        c.property("IsCompactFilePackaging", getter(&CGModel::getIsCompactFilePackaging));
        c.property("MaxMultiWordBits", getter(&CGModel::getMaxMultiWordBits));
        c.property("IsModelReferenceTarget", getter(&CGModel::getIsModelReferenceTarget));
        c.property("NumModelReferenceBlocks", getter(&CGModel::getNumModelReferenceBlocks));
        c.property("IsHostBasedSimulationTarget", getter(&CGModel::getIsHostBasedSimulationTarget));
        c.property("SharedCodeManagerPath", getter(&CGModel::getSharedCodeManagerPath),
                   setter(&CGModel::setSharedCodeManagerPath));
        c.method("getName", method(&CGModel::getName));
        c.method("getVersion", method(&CGModel::getVersion));
        c.method("getKordelCoderVersion", method(&CGModel::getKordelCoderVersion));
        c.method("getKordelVersion", method(&CGModel::getKordelVersion));
        c.method("getSystemForFunction", method(&CGModel::getSystemForFunction));
        c.method("serializeModel", method(&CGModel::serializeModel));
        c.method("serializeModelAfterScriv", method(&CGModel::serializeModelAfterScriv));
    });
}

std::unique_ptr<ClassInfo> varGroupClass() {
    return ClassInfo::make("VarGroup", "VelCG VarGroup", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Name", getter(&VarGroup::getName));
        c.property("Category", getter(&VarGroup::getCategory));
        c.property("LocalName", getter(&VarGroup::getLocalName));
        c.property("NonreusedName", getter(&VarGroup::getNonReusedName));
        c.property("SystemIndex", getter(&VarGroup::getSystemIndex));
        c.property("HasElement", getter(&VarGroup::getHasElement));
        c.property("InstanceIndex", getter(&VarGroup::getInstanceIndex));
        c.property("IsPointer", getter(&VarGroup::getIsPointer));
        c.property("ParentVarGroupIndex", getter(&VarGroup::getParentVarGroupIndex));
        c.property("MemberIndexInParent", getter(&VarGroup::getMemberIndexInParent));
        c.property("CGTypeIndex", getter(&VarGroup::getCGTypeIndex));
        c.property("TypeTag", getter(&VarGroup::getTypeTag));
        c.property("GlobalOffset", getter(&VarGroup::getGlobalOffset));
        c.property("Elements", getter(&VarGroup::getElements));
        c.property("SubstructNames", getter(&VarGroup::getSubStructNames));
        c.property("SubstructIndices", getter(&VarGroup::getSubStructIndices));
        c.property("DataGroupIndex", getter(&VarGroup::getCoderGroupIndex));
    });
}

std::unique_ptr<ClassInfo> velTypeClass() {
    return ClassInfo::make("VelType", "VelType", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("ID", getter(&VelType::getID), setter(&VelType::setID));
        c.property("CGTypeIdx", getter(&VelType::getCGTypeIdx), setter(&VelType::setCGTypeIdx));
        c.property("ContainerCGTypeIdx", getter(&VelType::getContainerCGTypeIdx),
                   setter(&VelType::setContainerCGTypeIdx));
        c.property("ContainerVelTypeIdx", getter(&VelType::getContainerVelTypeIdx),
                   setter(&VelType::setContainerVelTypeIdx));
        c.method("getDTName", method(&VelType::getDTName));
        c.method("isShared", method(&VelType::isShared));
        c.method("isUserProvided", method(&VelType::isUserProvided));
        c.method("getDescription", method(&VelType::getDescription));
        c.method("getIdAliasedTo", method(&VelType::getIdAliasedTo));
        c.method("getIdAliasedThruTo", method(&VelType::getIdAliasedThruTo));
        c.method("getHeaderFile", method(&VelType::getHeaderFile));
        c.method("isEnumType", method(&VelType::isEnumType));
        c.method("isStructType", method(&VelType::isStructType));
        c.method("isBus", method(&VelType::isBus));
        c.method("isAliasType", method(&VelType::isAliasType));
        c.method("getName", method(&VelType::getName));
        c.method("getComplexName", method(&VelType::getComplexName));
    });
}

std::unique_ptr<ClassInfo> externalInputClass() {
    return ClassInfo::make("ExternalInput", "VelCG ExternalInput", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("CGTypeIndex", getter(&ExternalInput::getCGTypeIndex));
        c.property("StorageClass", getter(&ExternalInput::getStorageClassString));
        c.property("RequiresGlobalAccess", getter(&ExternalInput::getRequiresGlobalAccess));
        c.property("Identifier", getter(&ExternalInput::getIdentifier));
        c.property("VarGroupIndex", getter(&ExternalInput::getVarGroupIndex));
        c.property("VarGroupMemberIndex", getter(&ExternalInput::getVarGroupMemberIndex));
        c.property("HasVarDims", getter(&ExternalInput::getHasVarDims));
        c.property("CanonicalDimSizeDWorkIndex", getter(&ExternalInput::getCanonicalDimSizeDWorkIndex));
        c.property("HasCanonicalDimSizeDWorkIndex", getter(&ExternalInput::hasCanonicalDimSizeDWorkIndex));
        c.property("SizeVarGroupIdx", getter(&ExternalInput::getSizeVarGroupIndex));
        c.property("SizeVarGroupMemberIndex", getter(&ExternalInput::getSizeVarGroupMemberIndex));
        c.property("DimSizeDWork", getter(&ExternalInput::getDimSizeDWork));
        c.property("Padding", getter(&ExternalInput::getPadding));
        c.method("getRecordIdentifier", method(&ExternalInput::getRecordIdentifier));
    });
}

std::unique_ptr<ClassInfo> blockHierarchyMapClass() {
    return ClassInfo::make("BlockHierarchyMap", "BHM object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Subsystems", getter(&BlockHierarchyMap::getSubsystems)).holds("VelCG.GraphicalSubsystem");
        c.property("ReducedBlocks", getter(&BlockHierarchyMap::getReducedBlocks))
            .holds("VelCG.GraphicalBlock");
    });
}

std::unique_ptr<ClassInfo> graphicalSubsystemClass() {
    return ClassInfo::make("GraphicalSubsystem", "Graph obj", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Name", getter(&GraphicalSubsystem::getName));
        c.property("VelName", getter(&GraphicalSubsystem::getVelName));
        c.property("SubsystemBlock", getter(&GraphicalSubsystem::getSubsystemBlock))
            .holds("VelCG.GraphicalBlock");
        c.property("Type", getter(&GraphicalSubsystem::getType));
        c.property("MaskType", getter(&GraphicalSubsystem::getMaskType));
        c.property("InputPortBlocks", getter(&GraphicalSubsystem::getInputPortBlocks))
            .holds("VelCG.GraphicalBlock");
        c.property("OutputPortBlocks", getter(&GraphicalSubsystem::getOutputPortBlocks))
            .holds("VelCG.GraphicalBlock");
        c.property("DataStoreBlocks", getter(&GraphicalSubsystem::getDataStoreBlocks))
            .holds("VelCG.GraphicalBlock");
        c.property("SubsystemBlocks", getter(&GraphicalSubsystem::getSubsystemBlocks))
            .holds("VelCG.GraphicalBlock");
        c.property("ChildSubsystems", getter(&GraphicalSubsystem::getChildSubsystems))
            .holds("VelCG.GraphicalSubsystem");
        c.property("Blocks", getter(&GraphicalSubsystem::getBlocks)).holds("VelCG.GraphicalBlock");
    });
}

std::unique_ptr<ClassInfo> graphicalBlockClass() {
    return ClassInfo::make("GraphicalBlock", "VelCG Graphical block object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Name", getter(&GraphicalBlock::getName));
        c.property("VelName", getter(&GraphicalBlock::getVelName));
        c.property("SID", getter(&GraphicalBlock::getSID));
        c.property("Type", getter(&GraphicalBlock::getType));
        c.property("Description", getter(&GraphicalBlock::getDescription));
        c.property("ReferencedModelName", getter(&GraphicalBlock::getReferencedModelName));
        c.property("Virtual", getter(&GraphicalBlock::getVirtual));
        c.property("DataInputPorts", getter(&GraphicalBlock::getDataInputPorts)).holds("VelCG.Port");
        c.property("DataOutputPorts", getter(&GraphicalBlock::getDataOutputPorts)).holds("VelCG.Port");
        c.property("ControlInputPorts", getter(&GraphicalBlock::getControlInputPorts)).holds("VelCG.Port");
        c.property("NumFcnCallOutputPorts", getter(&GraphicalBlock::getNumFcnCallOutputPorts));
        c.property("Parameters", getter(&GraphicalBlock::getParametersAsTuvArray)).holds("VelCG.Parameter");
        c.property("ContinuousStates", getter(&GraphicalBlock::getContinuousStates)).holds("VelCG.State");
        c.property("Derivatives", getter(&GraphicalBlock::getDerivatives)).holds("VelCG.State");
        c.property("DiscreteStates", getter(&GraphicalBlock::getDiscreteStatesAsTuvArray))
            .holds("VelCG.DataInterfaceRecord");
        c.property("DWorks", getter(&GraphicalBlock::getDWorksAsTuvArray)).holds("VelCG.DataInterfaceRecord");
        c.property("RLSCommentName", getter(&GraphicalBlock::getRLSCommentName));
        c.property("IsProtectedModelBlock", getter(&GraphicalBlock::getIsProtectedModelBlock));
    });
}

std::unique_ptr<ClassInfo> portClass() {
    return ClassInfo::make("Port", "VelCG Port object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("VelName", getter(&Port::getVelName));
        c.property("SignalLabel", getter(&Port::getSignalLabel));
        c.property("Connected", getter(&Port::getConnected));
        c.property("TestPoint", getter(&Port::getTestPoint));
        c.property("MdlRefSimLoggableTestPoint", getter(&Port::getMdlRefSimLoggableTestPoint));
        c.property("GraphicalSource", getter(&Port::getGraphicalSource)).holds("VelCG.Port");
        c.property("Regions", getter(&Port::getRegions)).holds("VelCG.Region");
    });
}

std::unique_ptr<ClassInfo> regionClass() {
    return ClassInfo::make("Region", "VelCG Region object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Source", getter(&Region::getSource));
        c.property("BusSelElIdx", getter(&Region::getBusSelElIdx));
        c.property("BusSelElCGTypeId", getter(&Region::getBusSelElCGTypeId));
        c.property("Offset", getter(&Region::getOffset));
        c.property("GroundDataTypeIdx", getter(&Region::getGroundDataTypeIdx));
        c.property("GroundLabel", getter(&Region::getGroundLabel));
        c.property("GroundIsComplex", getter(&Region::getGroundIsComplex));
        c.property("GroundIsSynthesized", getter(&Region::getGroundIsSynthesized));
        c.property("Dimensions", getter(&Region::getDimensions));
        c.property("FunctionArgumentIdx", getter(&Region::getFunctionArgumentIdx));
        c.property("DataInterface", getter(&Region::getDataInterfaceAsTuvArray));
    });
}

std::unique_ptr<ClassInfo> parameterClass() {
    return ClassInfo::make("Parameter", "VelCG Parameter object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Name", getterFn<ParameterKorb>([](const ParameterKorb& p) { return p.getName(); }));
        c.property("ModelParameters",
                   getterFn<ParameterKorb>([](const ParameterKorb& p) { return p.getModelParameters(); }))
            .holds("VelCG.ModelParameter");
    });
}

std::unique_ptr<ClassInfo> stateClass() {
    return ClassInfo::make("State", "VelCG State object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Dimensions", getter(&State::getDimensions));
    });
}

std::unique_ptr<ClassInfo> modelParameterClass() {
    using P = ModelParameterKorb;
    return ClassInfo::make("ModelParameter", "VelCG Model Parameter object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("Name", getterFn<P>([](const P& p) { return p.getName(); }));
        c.property("IsAlias", getterFn<P>([](const P& p) { return p.isAlias(); }));
        c.property("IsWorkspaceVar", getterFn<P>([](const P& p) { return p.isWorkspaceVar(); }));
        c.property("IsPseudoWorkspaceVar", getterFn<P>([](const P& p) { return p.isPseudoWorkspaceVar(); }));
        c.property("IsTunable", getterFn<P>([](const P& p) { return p.isTunable(); }));
        c.property("GraphicalSource", getterFn<P>([](const P& p) { return p.getGraphicalSource(); }))
            .holds("VelCG.GraphicalBlock");
        c.property("GraphicalReferences", getterFn<P>([](const P& p) { return p.getGraphicalReferences(); }))
            .holds("VelCG.GraphicalBlock");
        c.property("DataInterface", getterFn<P>([](const P& p) { return p.getDataInterfaceAsTuvArray(); }));
        c.method("getOriginalName",
                 korb::methodFn<P, std::wstring>([](const P& p) { return p.getOriginalName(); }));
        c.method("getWorkspaceVarName",
                 korb::methodFn<P, std::wstring>([](const P& p) { return p.getWorkspaceVarName(); }));
    });
}

// Scripts cannot create records, so every record a script passes belongs to
// some owner already, and other objects (a system's call sites, a model
// parameter's references) may point at a leaf without owning it. A script
// may therefore only reorder the leaves: adding one would give it two
// owners, dropping one would delete it under those pointers.
void setLeafElementsFromScript(ToAsyncQueueBlock& block, const std::vector<ToAsyncQueueBlock*>& leaves) {
    std::vector<ToAsyncQueueBlock*> current = block.getLeafElements();
    std::vector<ToAsyncQueueBlock*> given = leaves;
    std::sort(current.begin(), current.end(), std::less<>());
    std::sort(given.begin(), given.end(), std::less<>());
    if (current != given)
        throwInvalidOwnership(
            "Scripts can only reorder the leaf elements of an async-queue block; a leaf "
            "cannot be added or removed.");
    block.setLeafElements(leaves);
}

std::unique_ptr<ClassInfo> toAsyncQueueBlockClass() {
    using B = ToAsyncQueueBlock;
    return ClassInfo::make("ToAsyncQueueBlock", "VelCG ToAsyncQueue block object", [](ClassInfo& c) {
        c.superclass("VelCG.GraphicalBlock");
        c.property("isFixedPoint", getter(&B::getIsFixedPoint), setter(&B::setIsFixedPoint));
        c.property("isEnum", getter(&B::getIsEnum), setter(&B::setIsEnum));
        c.property("dataTypeId", getter(&B::getDataTypeId), setter(&B::setDataTypeId));
        c.property("dataTypeSize", getter(&B::getDataTypeSize), setter(&B::setDataTypeSize));
        c.property("fxpNumericType", getter(&B::getFxpNumericType), setter(&B::setFxpNumericType));
        c.property("fxpSignedness", getter(&B::getFxpSignedness), setter(&B::setFxpSignedness));
        c.property("fxpWordLength", getter(&B::getFxpWordLength), setter(&B::setFxpWordLength));
        c.property("fxpFractionLength", getter(&B::getFxpFractionLength), setter(&B::setFxpFractionLength));
        c.property("fxpSlopeAdjFactor", getter(&B::getFxpSlopeAdjFactor), setter(&B::setFxpSlopeAdjFactor));
        c.property("fxpFixedExponent", getter(&B::getFxpFixedExponent), setter(&B::setFxpFixedExponent));
        c.property("fxpBias", getter(&B::getFxpBias), setter(&B::setFxpBias));
        c.property("enumClassName", getter(&B::getEnumClassName), setter(&B::setEnumClassName));
        c.property("enumClassification", getter(&B::getEnumClassification),
                   setter(&B::setEnumClassification));
        c.property("enumLabels", getter(&B::getEnumLabels), setter(&B::setEnumLabels));
        c.property("enumValues", getter(&B::getEnumValues), setter(&B::setEnumValues));
        c.property("isComplex", getter(&B::getIsComplex), setter(&B::setIsComplex));
        c.property("isDiscete", getter(&B::getIsDiscrete), setter(&B::setIsDiscrete));
        c.property("isVirtualBus", getter(&B::getIsVirtualBus), setter(&B::setIsVirtualBus));
        c.property("isNVBus", getter(&B::getIsNVBus), setter(&B::setIsNVBus));
        c.property("isVarDims", getter(&B::getIsVarDims), setter(&B::setIsVarDims));
        c.property("dimensions", getter(&B::getDimensions), setter(&B::setDimensions));
        c.property("blockPath", getter(&B::getBlockPathTAQ), setter(&B::setBlockPath));
        c.property("blockSID", getter(&B::getBlockSID), setter(&B::setBlockSID));
        c.property("portNumber", getter(&B::getPortNumber), setter(&B::setPortNumber));
        c.property("signalName", getter(&B::getSignalName), setter(&B::setSignalName));
        c.property("actSrcBlockPath", getter(&B::getActSrcBlockPath), setter(&B::setActSrcBlockPath));
        c.property("actSrcBlockSID", getter(&B::getActSrcBlockSID), setter(&B::setActSrcBlockSID));
        c.property("actSrcPortNumber", getter(&B::getActSrcPortNumber), setter(&B::setActSrcPortNumber));
        c.property("actSrcDWorkName", getter(&B::getActSrcDWorkName), setter(&B::setActSrcDWorkName));
        c.property("actSrcStartElement", getter(&B::getActSrcStartElement),
                   setter(&B::setActSrcStartElement));
        c.property("signalSourceUUID", getter(&B::getSignalSourceUUID), setter(&B::setSignalSourceUUID));
        c.property("signalSourceUUIDasInteger", getter(&B::getSignalSourceUUIDasInteger),
                   setter(&B::setSignalSourceUUIDasInteger));
        c.property("units", getter(&B::getUnits), setter(&B::setUnits));
        c.property("uniqueId", getter(&B::getUniqueId), setter(&B::setUniqueId));
        c.property("tid", getter(&B::getTid), setter(&B::setTid));
        c.property("leafElements", getter(&B::getLeafElements),
                   setterFn<B, std::vector<B*>>(&setLeafElementsFromScript))
            .holds("VelCG.ToAsyncQueueBlock");
        c.property("nvBusOffset", getter(&B::getNVBusOffset), setter(&B::setNVBusOffset));
        c.property("isLiveStreaming", getter(&B::getIsLiveStreaming), setter(&B::setIsLiveStreaming));
        c.property("isDeferredStreaming", getter(&B::getIsDeferredStreaming),
                   setter(&B::setIsDeferredStreaming));
    });
}

std::unique_ptr<ClassInfo> dataInterfaceRecordClass() {
    return ClassInfo::make("DataInterfaceRecord", "VelCG  DataInterfaceRecord object", [](ClassInfo& c) {
        c.superclass(kHeterogeneous);
        c.property("DataInterface", getterFn<DataInterfaceRecordKorb>([](const DataInterfaceRecordKorb& r) {
                       return r.getDataInterfaceAsTuvArray();
                   }));
    });
}

} // namespace

void appendModelClasses(ClassList& classes) {
    const std::size_t first = classes.size();
    classes.push_back(systemClass());
    classes.push_back(velCGTypeClass());
    classes.push_back(cgTypeMemberClass());
    classes.push_back(cgModelClass());
    classes.push_back(varGroupClass());
    classes.push_back(velTypeClass());
    classes.push_back(externalInputClass());
    classes.push_back(blockHierarchyMapClass());
    classes.push_back(graphicalSubsystemClass());
    classes.push_back(graphicalBlockClass());
    classes.push_back(portClass());
    classes.push_back(regionClass());
    classes.push_back(parameterClass());
    classes.push_back(stateClass());
    classes.push_back(modelParameterClass());
    classes.push_back(toAsyncQueueBlockClass());
    classes.push_back(dataInterfaceRecordClass());
    // A background serialization pass only reads the model (its lazily
    // cached answers are safe to fill from two threads): scripts read beside
    // it, and wait for it before they write or call a method that is not
    // const.
    for (std::size_t i = first; i < classes.size(); ++i)
        classes[i]->setAccessGuard(
            {&detail::runningBackgroundPassCount(), &CGModel::waitForBackgroundSerialization, true});
}

} // namespace VelCG::binding
