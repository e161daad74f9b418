// The model itself in a description: its build attributes and
// configuration, systems, variable groups, root inputs, model parameters,
// data-interface records, async-queue blocks, coder data groups, prototype
// I/O map and child coder groups; and the list of files.

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include <boost/make_shared.hpp>

#include "description/Diagnostics.hpp"
#include "description/Fields.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/ChildCoderDataGroup.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelDescription.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/StoredCoderDataGroup.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredSystem.hpp"
#include "velcg/StoredVelType.hpp"
#include "velcg/ToAsyncQueueBlock.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGType.hpp"

namespace VelCG::description {

namespace {

const Enumeration<FilePackagingFormat>& packagingNames() {
    static const Enumeration<FilePackagingFormat> names = {
        {"Modular", FilePackagingFormat::Modular},
        {"Compact", FilePackagingFormat::Compact},
        {"CompactWithDataFile", FilePackagingFormat::CompactWithDataFile},
    };
    return names;
}

const Enumeration<VarGroupEnum>& categoryNames() {
    static const Enumeration<VarGroupEnum> names = [] {
        Enumeration<VarGroupEnum> out;
        for (int value = 0; value <= static_cast<int>(VarGroupEnum::HierarchicalCoderData); ++value) {
            const auto category = static_cast<VarGroupEnum>(value);
            const char* name = VarGroup::getStringforCategory(category);
            if (*name) out.emplace_back(name, category);
        }
        return out;
    }();
    return names;
}

// The code of a system's code reuse; anything but 0, 1 and 2 answers like
// the initial 3, so it is written as that.
const Enumeration<unsigned>& systemCodeNames() {
    static const Enumeration<unsigned> names = {
        {"Inlined", 0u}, {"NonReusable", 1u}, {"Reusable", 2u}, {"Unset", 3u}};
    return names;
}

unsigned systemCodeOf(const System& system) {
    return system.isInlined() ? 0u : system.isNonReusable() ? 1u : system.isReusable() ? 2u : 3u;
}

const Enumeration<CoderDataGroup::AsStructure>& asStructureNames() {
    using A = CoderDataGroup::AsStructure;
    static const Enumeration<A> names = {
        {"InParent", A::InParent}, {"InSelf", A::InSelf}, {"Standalone", A::Standalone}, {"None", A::None}};
    return names;
}

const Enumeration<CoderDataGroup::DataInit>& dataInitNames() {
    using D = CoderDataGroup::DataInit;
    static const Enumeration<D> names = {{"Dynamic", D::Dynamic}, {"Static", D::Static}, {"None", D::None}};
    return names;
}

const Enumeration<CoderDataGroup::DataInstantiation>& dataInstantiationNames() {
    using D = CoderDataGroup::DataInstantiation;
    static const Enumeration<D> names = {{"InstanceSpecific", D::InstanceSpecific}, {"Shared", D::Shared}};
    return names;
}

const Enumeration<ModelFileDescription::Kind>& fileKindNames() {
    using K = ModelFileDescription::Kind;
    static const Enumeration<K> names = {
        {"ModuleHeader", K::ModuleHeader},
        {"ModuleSource", K::ModuleSource},
        {"Generic", K::Generic},
        {"DataTypes", K::DataTypes},
    };
    return names;
}

const FieldTable<CGModelCPPConfig, const CGModelCPPConfig>& cppConfigFields() {
    using C = CGModelCPPConfig;
    static const auto table = [] {
        FieldTable<C, const C> t;
        t.boolean("isCPPClassGenMode", &C::isCPPClassGenMode, &C::setIsCPPClassGenMode)
            .boolean("genInternalMemberAccessMethods", &C::genInternalMemberAccessMethods,
                     &C::setGenInternalMemberAccessMethods)
            .boolean("internalMembersPubliclyVisible", &C::internalMembersPubliclyVisible,
                     &C::setInternalMembersPubliclyVisible);
        return t;
    }();
    return table;
}

using StringPair = std::pair<std::string, std::string>;

const FieldTable<StringPair, const StringPair>& stringPairFields() {
    static const auto table = [] {
        FieldTable<StringPair, const StringPair> t;
        t.text("key", &StringPair::first, [](StringPair& e, std::string v) { e.first = std::move(v); })
            .required()
            .text("value", &StringPair::second, [](StringPair& e, std::string v) { e.second = std::move(v); })
            .required();
        return t;
    }();
    return table;
}

using PortPair = std::pair<int, int>;

const FieldTable<PortPair, const PortPair>& ioPairFields() {
    static const auto table = [] {
        FieldTable<PortPair, const PortPair> t;
        t.int32("inputPort", &PortPair::first, [](PortPair& e, int v) { e.first = v; })
            .required()
            .int32("outputPort", &PortPair::second, [](PortPair& e, int v) { e.second = v; })
            .required();
        return t;
    }();
    return table;
}

const FieldTable<StoredSystem, const System>& systemFields() {
    using S = StoredSystem;
    using Y = System;
    static const auto table = [] {
        FieldTable<S, const Y> t;
        t.text("name", &Y::getName, &S::setName)
            .text("systemType", &Y::getSystemType, &S::setSystemType)
            .boolean("isRootSystem", &Y::isRootSystem, &S::setIsRootSystem)
            .boolean("isAtomic", &Y::isAtomic, &S::setIsAtomic)
            .boolean("isCalledByBlock", &Y::isCalledByBlock, &S::setIsCalledByBlock)
            .boolean("isReusableLibrarySubsystem", &Y::isReusableLibrarySubsystem,
                     &S::setIsReusableLibrarySubsystem)
            .text("identifier", &Y::getIdentifier, &Y::setIdentifier)
            .text("startFcn", &Y::getStartFcn, &Y::setStartFcn)
            .text("outputFcn", &Y::getOutputFcn, &Y::setOutputFcn)
            .text("updateFcn", &Y::getUpdateFcn, &Y::setUpdateFcn)
            .text("outputUpdateFcn", &Y::getOutputUpdateFcn, &Y::setOutputUpdateFcn)
            .enumeration("systemCode", systemCodeNames(), systemCodeOf, &Y::setBriskSystemCode)
            .boolean("isModelReferenceBaseSystem", &Y::isModelReferenceBaseSystem,
                     &Y::setIsModelReferenceBaseSystem)
            .field(
                "graphicalCallsites",
                [](DescriptionWriter& w, const Y& system, const Place& p) {
                    Json out = Json::array();
                    const auto& blocks = system.getGraphicalCallsites();
                    for (std::size_t i = 0; i < blocks.size(); ++i)
                        out.push_back(writeBlockReference(w, blocks[i], p / i));
                    return out;
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& system) {
                    // Resolved in order once the hierarchy is read.
                    std::size_t i = 0;
                    for (const JsonValue element : r.array(v, p))
                        readBlockReference(r, element, p / i++,
                                           [&system](GraphicalBlock* b) { system.addGraphicalCallsite(b); });
                })
            .field(
                "functions",
                [](DescriptionWriter& w, const Y& system, const Place& p) {
                    return w.texts(w.functionsOf(&system), p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& system) {
                    const std::vector<std::string> names = r.texts(v, p);
                    for (std::size_t i = 0; i < names.size(); ++i) {
                        auto [it, added] = r.functionNames().emplace(names[i], (p / i).pointer());
                        if (!added)
                            r.invalid(p / i, "the function \"" + names[i] + "\" is already recorded at " +
                                                 it->second + "; a function belongs to one system");
                        r.model().addFunctionForSystem(names[i], &system);
                    }
                });
        return t;
    }();
    return table;
}

const FieldTable<VarGroup, const VarGroup>& varGroupFields() {
    using G = VarGroup;
    static const auto table = [] {
        FieldTable<G, const G> t;
        t.text("name", &G::getName, &G::setName)
            .enumeration("category", categoryNames(), &G::getCategory, &G::setCategory)
            .text("localName", &G::getLocalName, &G::setLocalName)
            .text("nonReusedName", &G::getNonReusedName, &G::setNonReusedName)
            .index("systemIndex", ListKind::Systems, true, &G::getSystemIndex, &G::setSystemIndex)
            .text("hasElement", &G::getHasElement, &G::setHasElement)
            .int32("instanceIndex", &G::getInstanceIndex, &G::setInstanceIndex)
            .boolean("isPointer", &G::getIsPointer, &G::setIsPointer)
            .index("parentVarGroupIndex", ListKind::VarGroups, true, &G::getParentVarGroupIndex,
                   &G::setParentVarGroupIndex)
            .int32("memberIndexInParent", &G::getMemberIndexInParent, &G::setMemberIndexInParent)
            .index("cgTypeIndex", ListKind::CGTypes, true, &G::getCGTypeIndex, &G::setCGTypeIndex)
            .text("typeTag", &G::getTypeTag, &G::setTypeTag)
            .int32("globalOffset", &G::getGlobalOffset, &G::setGlobalOffset)
            .texts("elements", &G::getElements, &G::setElements)
            .texts("subStructNames", &G::getSubStructNames, &G::setSubStructNames)
            .indices("subStructIndices", ListKind::VarGroups, &G::getSubStructIndices,
                     &G::setSubStructIndices)
            .index("coderGroupIndex", ListKind::CoderDataGroups, true, &G::getCoderGroupIndex,
                   &G::setCoderGroupIndex);
        return t;
    }();
    return table;
}

const FieldTable<ExternalInput, const ExternalInput>& externalInputFields() {
    using E = ExternalInput;
    static const auto table = [] {
        FieldTable<E, const E> t;
        t.index("cgTypeIndex", ListKind::CGTypes, true, &E::getCGTypeIndex, &E::setCGTypeIndex)
            .int32("storageClass", &E::getStorageClass,
                   [](E& e, int v) { e.setStorageClass(v, e.getStorageClassString()); })
            .text("storageClassString", &E::getStorageClassString,
                  [](E& e, const std::string& v) { e.setStorageClass(e.getStorageClass(), v); })
            .boolean("requiresGlobalAccess", &E::getRequiresGlobalAccess, &E::setRequiresGlobalAccess)
            .text("identifier", &E::getIdentifier, &E::setIdentifier)
            .text("signalIdRecord", &E::getSignalIdRecord, &E::setSignalIdRecord)
            .index("varGroupIndex", ListKind::VarGroups, true, &E::getVarGroupIndex, &E::setVarGroupIndex)
            .int32("varGroupMemberIndex", &E::getVarGroupMemberIndex, &E::setVarGroupMemberIndex)
            .boolean("hasVarDims", &E::getHasVarDims, &E::setHasVarDims)
            .int32("canonicalDimSizeDWorkIndex", &E::getCanonicalDimSizeDWorkIndex,
                   &E::setCanonicalDimSizeDWorkIndex)
            .boolean("hasCanonicalDimSizeDWorkIndex", &E::hasCanonicalDimSizeDWorkIndex,
                     &E::setHasCanonicalDimSizeDWorkIndex)
            .index("sizeVarGroupIndex", ListKind::VarGroups, true, &E::getSizeVarGroupIndex,
                   &E::setSizeVarGroupIndex)
            .int32("sizeVarGroupMemberIndex", &E::getSizeVarGroupMemberIndex, &E::setSizeVarGroupMemberIndex)
            .int32("dimSizeDWork", &E::getDimSizeDWork, &E::setDimSizeDWork)
            .int32("padding", &E::getPadding, &E::setPadding);
        return t;
    }();
    return table;
}

const FieldTable<StoredModelParameter, const ModelParameterImpl>& modelParameterFields() {
    using S = StoredModelParameter;
    using M = ModelParameterImpl;
    static const auto table = [] {
        FieldTable<S, const M> t;
        t.wide("name", &M::getName, &S::setName)
            .wide("originalName", &M::getOriginalName, &S::setOriginalName)
            .boolean("isAlias", &M::isAlias, &S::setIsAlias)
            .wide("workspaceVarName", &M::getWorkspaceVarName, &S::setWorkspaceVarName)
            .boolean("isWorkspaceVar", &M::isWorkspaceVar, &S::setIsWorkspaceVar)
            .boolean("isTunable", &M::isTunable, &S::setIsTunable)
            .boolean("isPseudoWorkspaceVar", &M::isPseudoWorkspaceVar, &S::setIsPseudoWorkspaceVar)
            .field(
                "graphicalSource",
                [](DescriptionWriter& w, const M& parameter, const Place& p) {
                    const GraphicalBlock* source = parameter.getGraphicalSource();
                    return source ? writeBlockReference(w, source, p) : Json();
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& parameter) {
                    readBlockReference(r, v, p,
                                       [&parameter](GraphicalBlock* b) { parameter.setGraphicalSource(b); });
                })
            .field(
                "graphicalReferences",
                [](DescriptionWriter& w, const M& parameter, const Place& p) {
                    Json out = Json::array();
                    const auto& blocks = parameter.getGraphicalReferences();
                    for (std::size_t i = 0; i < blocks.size(); ++i)
                        out.push_back(writeBlockReference(w, blocks[i], p / i));
                    return out;
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& parameter) {
                    std::size_t i = 0;
                    for (const JsonValue element : r.array(v, p))
                        readBlockReference(r, element, p / i++, [&parameter](GraphicalBlock* b) {
                            parameter.addGraphicalReference(b);
                        });
                })
            .field(
                "dataInterface",
                [](DescriptionWriter& w, const M& parameter, const Place& p) {
                    return writeDataInterface(w, parameter.getDataInterface(), p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& parameter) {
                    readDataInterface(r, v, p,
                                      [&](const CG::DataInterface* d) { parameter.setDataInterface(d); });
                });
        return t;
    }();
    return table;
}

// A record whose graphical part (a StoredGraphicalBlock) is described
// under "block".
std::unique_ptr<ToAsyncQueueBlock> newQueueBlock(const CGModel* model) {
    auto impl = std::make_unique<StoredGraphicalBlock>();
    impl->setCGModel(model);
    return std::unique_ptr<ToAsyncQueueBlock>(new ToAsyncQueueBlock(impl.release()));
}

const FieldTable<ToAsyncQueueBlock, ToAsyncQueueBlock>& queueBlockFields() {
    using Q = ToAsyncQueueBlock;
    static const auto table = [] {
        FieldTable<Q, Q> t;
        t.field(
             "block",
             [](DescriptionWriter& w, Q& queue, const Place& p) {
                 StoredGraphicalBlock defaults;
                 return blockFields().write(w, queue, defaults, p);
             },
             [](DescriptionReader& r, JsonValue v, const Place& p, Q& queue) {
                 readBlock(r, v, p, static_cast<StoredGraphicalBlock&>(*queue.getImpl()));
             })
            .boolean("isFixedPoint", &Q::getIsFixedPoint, &Q::setIsFixedPoint)
            .boolean("isEnum", &Q::getIsEnum, &Q::setIsEnum)
            .int32("dataTypeId", &Q::getDataTypeId, &Q::setDataTypeId)
            .int32("dataTypeSize", &Q::getDataTypeSize, &Q::setDataTypeSize)
            .int32("fxpNumericType", &Q::getFxpNumericType, &Q::setFxpNumericType)
            .uint32("fxpSignedness", &Q::getFxpSignedness, &Q::setFxpSignedness)
            .int32("fxpWordLength", &Q::getFxpWordLength, &Q::setFxpWordLength)
            .int32("fxpFractionLength", &Q::getFxpFractionLength, &Q::setFxpFractionLength)
            .real("fxpSlopeAdjFactor", &Q::getFxpSlopeAdjFactor, &Q::setFxpSlopeAdjFactor)
            .int32("fxpFixedExponent", &Q::getFxpFixedExponent, &Q::setFxpFixedExponent)
            .real("fxpBias", &Q::getFxpBias, &Q::setFxpBias)
            .wide("enumClassName", &Q::getEnumClassName, &Q::setEnumClassName)
            .wide("enumClassification", &Q::getEnumClassification, &Q::setEnumClassification)
            .wides("enumLabels", &Q::getEnumLabels, &Q::setEnumLabels)
            .int32s("enumValues", &Q::getEnumValues, &Q::setEnumValues)
            .boolean("isComplex", &Q::getIsComplex, &Q::setIsComplex)
            .boolean("isDiscrete", &Q::getIsDiscrete, &Q::setIsDiscrete)
            .boolean("isVirtualBus", &Q::getIsVirtualBus, &Q::setIsVirtualBus)
            .boolean("isNVBus", &Q::getIsNVBus, &Q::setIsNVBus)
            .boolean("isVarDims", &Q::getIsVarDims, &Q::setIsVarDims)
            .int32s("dimensions", &Q::getDimensions, &Q::setDimensions)
            .wide("blockPath", &Q::getBlockPathTAQ, &Q::setBlockPath)
            .wide("blockSID", &Q::getBlockSID, &Q::setBlockSID)
            .int32("portNumber", &Q::getPortNumber, &Q::setPortNumber)
            .wide("signalName", &Q::getSignalName, &Q::setSignalName)
            .wide("actSrcBlockPath", &Q::getActSrcBlockPath, &Q::setActSrcBlockPath)
            .wide("actSrcBlockSID", &Q::getActSrcBlockSID, &Q::setActSrcBlockSID)
            .int32("actSrcPortNumber", &Q::getActSrcPortNumber, &Q::setActSrcPortNumber)
            .wide("actSrcDWorkName", &Q::getActSrcDWorkName, &Q::setActSrcDWorkName)
            .int32("actSrcStartElement", &Q::getActSrcStartElement, &Q::setActSrcStartElement)
            .wide("signalSourceUUID", &Q::getSignalSourceUUID, &Q::setSignalSourceUUID)
            .int64("signalSourceUUIDasInteger", &Q::getSignalSourceUUIDasInteger,
                   &Q::setSignalSourceUUIDasInteger)
            .wide("units", &Q::getUnits, &Q::setUnits)
            .uint32("uniqueId", &Q::getUniqueId, &Q::setUniqueId)
            .int32("tid", &Q::getTid, &Q::setTid)
            .int64("nvBusOffset", &Q::getNVBusOffset, &Q::setNVBusOffset)
            .boolean("isLiveStreaming", &Q::getIsLiveStreaming, &Q::setIsLiveStreaming)
            .boolean("isDeferredStreaming", &Q::getIsDeferredStreaming, &Q::setIsDeferredStreaming)
            .list(
                "leafElements", &Q::getLeafElements,
                [](DescriptionWriter& w, Q* leaf, const Place& p) {
                    auto defaults = newQueueBlock(nullptr);
                    return queueBlockFields().write(w, *leaf, *defaults, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, Q& queue) {
                    DescriptionReader::Nesting nesting(r, p);
                    auto leaf = newQueueBlock(&r.model());
                    queueBlockFields().read(r, v, p, *leaf);
                    queue.addLeafElement(leaf.get());
                    leaf.release();
                });
        return t;
    }();
    return table;
}

const FieldTable<CoderDataGroup, const CoderDataGroup>& coderGroupFields() {
    using G = CoderDataGroup;
    static const auto table = [] {
        FieldTable<G, const G> t;
        // The name is the group's constructor argument: the lists read it
        // first (readGroupName).
        t.text("name", &G::name, [](G&, const std::string&) {})
            .required()
            .text("memorySection", &G::getMemorySection, &G::setMemorySection)
            .text("dataScope", &G::getDataScope, &G::setDataScope)
            .text("description", &G::getDescription, &G::setDescription)
            .text("identification", &G::getIdentification, &G::setIdentification)
            .text("headerFileRule", &G::getHeaderFileRule, &G::setHeaderFileRule)
            .text("structureTypeNameRule", &G::getStructureTypeNameRule, &G::setStructureTypeNameRule)
            .text("structureInstanceNameRule", &G::getStructureInstanceNameRule,
                  &G::setStructureInstanceNameRule)
            .text("selfStructureTypeNameRule", &G::getSelfStructureTypeNameRule,
                  &G::setSelfStructureTypeNameRule)
            .text("selfStructureInstanceNameRule", &G::getSelfStructureInstanceNameRule,
                  &G::setSelfStructureInstanceNameRule)
            .text("structureReferenceNameRule", &G::getStructureReferenceNameRule,
                  &G::setStructureReferenceNameRule)
            .text("selfStructureReferenceNameRule", &G::getSelfStructureReferenceNameRule,
                  &G::setSelfStructureReferenceNameRule)
            .text("structureArgumentNameRule", &G::getStructureArgumentNameRule,
                  &G::setStructureArgumentNameRule)
            .text("selfStructureArgumentNameRule", &G::getSelfStructureArgumentNameRule,
                  &G::setSelfStructureArgumentNameRule)
            .text("parameterAccessMacroNameRule", &G::getParameterAccessMacroNameRule,
                  &G::setParameterAccessMacroNameRule)
            .enumeration("asStructure", asStructureNames(), &G::getAsStructure, &G::setAsStructure)
            .enumeration("dataInstantiation", dataInstantiationNames(), &G::getDataInstantiation,
                         &G::setDataInstantiation)
            .enumeration("dataInit", dataInitNames(), &G::getDataInit, &G::setDataInit)
            .boolean("embedIntoSelf", &G::getEmbedIntoSelf, &G::setEmbedIntoSelf)
            .boolean("defaultGroup", &G::getDefaultGroup, &G::setDefaultGroup)
            .boolean("synthesized", &G::getSynthesized, &G::setSynthesized)
            .boolean("isMemorySectionConst", &G::getIsMemorySectionConst, &G::setIsMemorySectionConst)
            .boolean("isMemorySectionVolatile", &G::getIsMemorySectionVolatile,
                     &G::setIsMemorySectionVolatile)
            .text("rootGroupTypeName", &G::getRootGroupTypeName, &G::setRootGroupTypeName)
            .boolean("isSelfGroup", &G::isSelfGroup, &G::setSelfGroup);
        return t;
    }();
    return table;
}

Json writeCoderGroup(DescriptionWriter& w, const CoderDataGroup& group, const Place& p) {
    const StoredCoderDataGroup defaults(group.name(), nullptr);
    return coderGroupFields().write(w, group, defaults, p);
}

std::string readGroupName(DescriptionReader& r, JsonValue v, const Place& p) {
    r.expectObject(v, p);
    return r.text(r.required(v, p, "name"), p / "name");
}

// One entry of "childCoderGroups" as the writer sees it, and as the reader
// builds it.
struct ChildVariable {
    std::string group;
    std::string name;
    int compiledModelBlockIndex = -1;
};

struct ChildSource {
    std::string childModel;
    std::vector<const CoderDataGroup*> groups;
    std::vector<ChildVariable> variables;
};

struct ChildTarget {
    ChildCoderGroupMgr* manager = nullptr;
    // Child models already read, with their pointers.
    std::map<std::string, std::string>* childModels = nullptr;
    std::string childModel;
    // The groups of this entry, with their pointers.
    std::map<std::string, std::string> groups;
};

const FieldTable<ChildVariable, const ChildVariable>& childVariableFields() {
    using V = ChildVariable;
    static const auto table = [] {
        FieldTable<V, const V> t;
        t.text("group", &V::group, [](V& v, std::string s) { v.group = std::move(s); })
            .required()
            .text("name", &V::name, [](V& v, std::string s) { v.name = std::move(s); })
            .required()
            .int32("compiledModelBlockIndex", &V::compiledModelBlockIndex,
                   [](V& v, int i) { v.compiledModelBlockIndex = i; })
            .required();
        return t;
    }();
    return table;
}

const FieldTable<ChildTarget, const ChildSource>& childEntryFields() {
    static const auto table = [] {
        FieldTable<ChildTarget, const ChildSource> t;
        t.field(
             "childModel",
             [](DescriptionWriter& w, const ChildSource& s, const Place& p) {
                 return w.text(s.childModel, p);
             },
             [](DescriptionReader& r, JsonValue v, const Place& p, ChildTarget& target) {
                 target.childModel = r.text(v, p);
                 auto [it, added] = target.childModels->emplace(target.childModel, p.pointer());
                 if (!added)
                     r.invalid(p, "the child model \"" + target.childModel + "\" is already described at " +
                                      it->second);
             })
            .required()
            .list(
                "groups", &ChildSource::groups,
                [](DescriptionWriter& w, const CoderDataGroup* group, const Place& p) {
                    return writeCoderGroup(w, *group, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, ChildTarget& target) {
                    const std::string name = readGroupName(r, v, p);
                    auto [it, added] = target.groups.emplace(name, p.pointer());
                    if (!added)
                        r.invalid(p / "name", "the child model already has a group named \"" + name +
                                                  "\" at " + it->second);
                    auto group = std::make_unique<ChildCoderDataGroup>(name);
                    coderGroupFields().read(r, v, p, *group);
                    target.manager->setChildCoderGroup(vel::i18n::toUString(target.childModel),
                                                       std::move(group));
                })
            .list(
                "variables", &ChildSource::variables,
                [](DescriptionWriter& w, const ChildVariable& variable, const Place& p) {
                    const ChildVariable none;
                    return childVariableFields().write(w, variable, none, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, ChildTarget& target) {
                    ChildVariable variable;
                    childVariableFields().read(r, v, p, variable);
                    if (!target.groups.count(variable.group)) {
                        const std::string pointer = p.pointer();
                        const std::string entry = pointer.substr(0, pointer.rfind("/variables"));
                        r.fail(messages::ModelDescription::DanglingReference, p / "group",
                               {"the name \"" + variable.group + "\"", entry + "/groups",
                                std::to_string(target.groups.size())});
                    }
                    target.manager->addVariableForChildGroup(vel::i18n::toUString(target.childModel),
                                                             variable.group, variable.name,
                                                             variable.compiledModelBlockIndex);
                });
        return t;
    }();
    return table;
}

// The child coder groups as the writer lists them: child models by name,
// each one's groups by name, and the variables of each group (group names
// in order, each group's variables in the order added) under the first
// child model, by name, that has a group of that name. Variables are kept
// by group name alone, so that entry gives the manager the same records.
std::vector<ChildSource> childSources(DescriptionWriter& w, const ChildCoderGroupMgr& manager,
                                      const Place& p) {
    std::vector<ChildSource> sources;
    for (const auto& model : manager.getChildModelNames()) {
        ChildSource source;
        try {
            source.childModel = vel::i18n::toUtf8(model);
        } catch (const vel::diag::Exception&) {
            w.fail(p, "the name of a child model is not valid Unicode");
        }
        std::vector<std::string> names = manager.getChildCoderGroupNames(model);
        std::sort(names.begin(), names.end());
        for (const auto& name : names) source.groups.push_back(manager.getChildCoderGroup(model, name));
        sources.push_back(std::move(source));
    }
    std::sort(sources.begin(), sources.end(),
              [](const ChildSource& a, const ChildSource& b) { return a.childModel < b.childModel; });
    std::vector<std::string> groupNames = manager.getVariableGroupNames();
    std::sort(groupNames.begin(), groupNames.end());
    for (const auto& groupName : groupNames) {
        ChildSource* owner = nullptr;
        const CoderDataGroup* group = nullptr;
        for (auto& source : sources) {
            for (const CoderDataGroup* g : source.groups)
                if (g->name() == groupName) group = g;
            if (group) {
                owner = &source;
                break;
            }
        }
        if (!owner)
            w.fail(p, "variables are recorded for the group \"" + groupName + "\", which no child model has");
        for (const ChildCoderGroupVarInfo& info : *manager.getVarInfoForGroup(groupName)) {
            // The record's type name is the group's root type name when the
            // variable was added; a later change cannot be described.
            if (info.getTypeName() != group->getRootGroupTypeName())
                w.fail(p, "the variable \"" + info.getVarName() + "\" of the group \"" + groupName +
                              "\" has the type name \"" + info.getTypeName() + "\", not the group's \"" +
                              group->getRootGroupTypeName() + "\"");
            owner->variables.push_back({groupName, info.getVarName(), info.getCompiledModelBlockIndex()});
        }
    }
    return sources;
}

using ModelTable = FieldTable<StoredCGModel, const CGModel>;

// A list of data-interface records of the model.
template <class Get, class Add>
void addRecordList(ModelTable& t, const char* key, Get get, Add add) {
    t.list(
        key, get,
        [](DescriptionWriter& w, const DataInterfaceRecord* record, const Place& p) {
            const StoredDataInterfaceRecord defaults;
            return recordFields().write(w, *record->getImpl(), defaults, p);
        },
        [add](DescriptionReader& r, JsonValue v, const Place& p, StoredCGModel& model) {
            auto impl = std::make_unique<StoredDataInterfaceRecord>();
            recordFields().read(r, v, p, *impl);
            std::invoke(
                add, model,
                std::unique_ptr<DataInterfaceRecord>(r.factory().createDataInterfaceRecord(impl.release())));
        });
}

// A list of objects the model owns as they are read: each written against a
// default-constructed Default, read into a new Made that add hands over.
template <class Made, class Default = Made, class Get, class Fields, class Add>
void addOwnedList(ModelTable& t, const char* key, Get get, Fields fields, Add add) {
    t.list(
        key, get,
        [fields](DescriptionWriter& w, const auto* element, const Place& p) {
            const Default defaults;
            return fields().write(w, *element, defaults, p);
        },
        [fields, add](DescriptionReader& r, JsonValue v, const Place& p, StoredCGModel& model) {
            auto element = std::make_unique<Made>();
            fields().read(r, v, p, *element);
            std::invoke(add, model, std::move(element));
        });
}

// The model's own attributes: its names and versions, build attributes,
// C++ configuration and string map.
void addModelAttributes(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.wide("name", &M::getName, &S::setName)
        .wide("version", &M::getVersion, &S::setVersion)
        .wide("kordelCoderVersion", &M::getKordelCoderVersion, &S::setKordelCoderVersion)
        .wide("kordelVersion", &M::getKordelVersion, &S::setKordelVersion)
        .text("subsystemNameForRightClickBuild", &M::getSubsystemNameForRightClickBuild,
              &M::setSubsystemNameForRightClickBuild)
        .text("subsystemPathForRightClickBuild", &M::getSubsystemPathForRightClickBuild,
              &M::setSubsystemPathForRightClickBuild)
        .text("modelReferenceTargetType", &M::getModelReferenceTargetType, &M::setModelReferenceTargetType)
        .uint32("numChildSFunctions", &M::getNumChildSFunctions, &M::setNumChildSFunctions)
        .enumeration("filePackagingFormat", packagingNames(), &M::getFilePackagingFormat,
                     &M::setFilePackagingFormat)
        .boolean("isQuayTarget", &M::getIsQuayTarget, &M::setIsQuayTarget)
        .boolean("isGeneratingToSharedLocation", &M::getIsGeneratingTosharedLocation,
                 &M::setIsGeneratingToSharedLocation)
        .int32("maxMultiWordBits", &M::getMaxMultiWordBits, &M::setMaxMultiWordBits)
        .boolean("isModelReferenceTarget", &M::getIsModelReferenceTarget, &M::setIsModelReferenceTarget)
        .int32("numModelReferenceBlocks", &M::getNumModelReferenceBlocks, &M::setNumModelReferenceBlocks)
        .boolean("isHostBasedSimulationTarget", &M::getIsHostBasedSimulationTarget,
                 &M::setIsHostBasedSimulationTarget)
        .wide("sharedCodeManagerPath", &M::getSharedCodeManagerPath, &M::setSharedCodeManagerPath)
        .field(
            "cppConfig",
            [](DescriptionWriter& w, const M& model, const Place& p) {
                const CGModelCPPConfig defaults;
                return cppConfigFields().write(w, model.getCPPConfig(), defaults, p);
            },
            [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
                cppConfigFields().read(r, v, p, model.getCPPConfig());
            })
        .field(
            "stringMap",
            // Absent for no map, an empty list for an empty one.
            [](DescriptionWriter& w, const M& model, const Place& p) {
                const auto map = model.getStringMap();
                if (!map) return Json();
                Json out = Json::array();
                const StringPair none;
                for (std::size_t i = 0; i < map->size(); ++i)
                    out.push_back(stringPairFields().write(w, (*map)[i], none, p / i));
                return out;
            },
            [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
                const JsonArray entries = r.array(v, p);
                auto map = boost::make_shared<CGModel::StringMap>();
                map->reserve(sizeOf(entries));
                for (const JsonValue element : entries) {
                    StringPair entry;
                    stringPairFields().read(r, element, p / map->size(), entry);
                    map->push_back(std::move(entry));
                }
                model.setStringMap(map);
            });
}

// "systems", with the functions each one owns.
void addSystems(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.field(
        "systems",
        [](DescriptionWriter& w, const M& model, const Place& p) {
            const auto& systems = model.getSystems();
            std::map<std::string, const System*> functions(model.getFunctionSystems().begin(),
                                                           model.getFunctionSystems().end());
            for (const auto& [name, system] : functions)
                if (std::find(systems.begin(), systems.end(), system) == systems.end())
                    w.fail(p, "the function \"" + name + "\" belongs to a system that is not in the list");
            Json out = Json::array();
            for (std::size_t i = 0; i < systems.size(); ++i) {
                const StoredSystem defaults;
                out.push_back(systemFields().write(w, *systems[i], defaults, p / i));
            }
            return out;
        },
        [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
            std::size_t i = 0;
            for (const JsonValue element : r.array(v, p)) {
                auto system = std::make_unique<StoredSystem>();
                StoredSystem& added = *system;
                model.addSystem(std::move(system));
                systemFields().read(r, element, p / i++, added);
            }
        });
}

void addVelTypes(ModelTable& t) {
    addOwnedList<StoredVelType>(
        t, "velTypes", &CGModel::getVelTypes, velTypeFields,
        [](StoredCGModel& m, std::unique_ptr<StoredVelType> type) { m.addVelType(std::move(type)); });
}

void addCGTypes(ModelTable& t) {
    addOwnedList<VelCGType>(
        t, "cgTypes", &CGModel::getVelCGTypes, cgTypeFields,
        [](StoredCGModel& m, std::unique_ptr<VelCGType> type) { m.addVelCGType(std::move(type)); });
}

void addVarGroups(ModelTable& t) {
    addOwnedList<VarGroup>(
        t, "varGroups", &CGModel::getVarGroups, varGroupFields,
        [](StoredCGModel& m, std::unique_ptr<VarGroup> group) { m.addVarGroup(std::move(group)); });
}

void addExternalInputs(ModelTable& t) {
    addOwnedList<ExternalInput>(
        t, "externalInputs", [](const CGModel& model) -> const auto& { return model.getExternalInputs(); },
        externalInputFields,
        [](StoredCGModel& m, std::unique_ptr<ExternalInput> input) { m.addExternalInput(std::move(input)); });
}

void addModelParameters(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.list(
        "modelParameters", &M::getModelParameters,
        [](DescriptionWriter& w, const ModelParameter* parameter, const Place& p) {
            const StoredModelParameter defaults;
            return modelParameterFields().write(w, *parameter->getImpl(), defaults, p);
        },
        [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
            auto impl = std::make_unique<StoredModelParameter>();
            modelParameterFields().read(r, v, p, *impl);
            model.addModelParameter(
                std::unique_ptr<ModelParameter>(r.factory().createModelParameter(impl.release())));
        });
}

// The lists of data-interface records.
void addRecordLists(ModelTable& t) {
    using M = CGModel;
    addRecordList(t, "globalBlockOutputs", &M::getGlobalBlockOutputs, &M::addGlobalBlockOutput);
    addRecordList(t, "constantBlockOutputs", &M::getConstantBlockOutputs, &M::addConstantBlockOutput);
    addRecordList(
        t, "externalBlockOutputs", [](const M& m) -> const auto& { return m.getExternalBlockOutputs(); },
        &M::addExternalBlockOutput);
    addRecordList(
        t, "dWorks", [](const M& m) -> const auto& { return m.getDWorks(); }, &M::addDWork);
    addRecordList(
        t, "externalInputInterfaces",
        [](const M& m) -> const auto& { return m.getExternalInputInterfaces(); },
        &M::addExternalInputDataInterface);
    addRecordList(
        t, "externalOutputInterfaces",
        [](const M& m) -> const auto& { return m.getExternalOutputInterfaces(); },
        &M::addExternalOutputDataInterface);
}

// "hierarchy", the block hierarchy map.
void addHierarchy(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.field(
        "hierarchy",
        [](DescriptionWriter& w, const M& model, const Place& p) {
            const BlockHierarchyMap defaults;
            return hierarchyFields().write(w, *model.getBlockHierarchyMap(), defaults, p);
        },
        [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
            hierarchyFields().read(r, v, p, *model.getBlockHierarchyMap());
        });
}

void addQueueBlocks(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.list(
        "taqBlocks", &M::getTAQBlocks,
        [](DescriptionWriter& w, ToAsyncQueueBlock* queue, const Place& p) {
            auto defaults = newQueueBlock(nullptr);
            return queueBlockFields().write(w, *queue, *defaults, p);
        },
        [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
            auto queue = newQueueBlock(&model);
            queueBlockFields().read(r, v, p, *queue);
            model.addTAQBlock(std::move(queue));
        });
}

void addCoderDataGroups(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.field(
        "coderDataGroups",
        [](DescriptionWriter& w, const M& model, const Place& p) {
            Json out = Json::array();
            for (std::size_t i = 0; i < model.getNumCoderDataGroups(); ++i)
                out.push_back(writeCoderGroup(w, *model.getCoderDataGroup(i), p / i));
            return out;
        },
        [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
            std::size_t i = 0;
            for (const JsonValue element : r.array(v, p)) {
                const Place entry = p / i++;
                const std::string name = readGroupName(r, element, entry);
                if (const CoderDataGroup* earlier = model.getCoderDataGroup(name))
                    r.invalid(entry / "name",
                              "the model already has a group named \"" + name + "\" at " +
                                  (p / static_cast<std::size_t>(earlier->getGroupIndex())).pointer());
                auto group = std::make_unique<StoredCoderDataGroup>(name, &model);
                coderGroupFields().read(r, element, entry, *group);
                model.appendCoderDataGroup(std::move(group));
            }
        });
}

// "ioMap", the function-prototype I/O map.
void addIOMap(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.field(
        "ioMap",
        // In ascending order of input port, so that a map gives one text.
        [](DescriptionWriter& w, const M& model, const Place& p) {
            const auto& pairs = model.getFPCIOMap().getPairs();
            const std::map<int, int> sorted(pairs.begin(), pairs.end());
            Json out = Json::array();
            const PortPair none;
            for (const auto& pair : sorted)
                out.push_back(ioPairFields().write(w, pair, none, p / out.size()));
            return out;
        },
        [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
            std::map<int, std::string> inputs;
            std::size_t i = 0;
            for (const JsonValue element : r.array(v, p)) {
                const Place entry = p / i++;
                PortPair pair;
                ioPairFields().read(r, element, entry, pair);
                auto [it, added] = inputs.emplace(pair.first, entry.pointer());
                if (!added)
                    r.invalid(entry / "inputPort", "the input port " + std::to_string(pair.first) +
                                                       " is already paired at " + it->second);
                model.setOverwritableIOPair(pair.first, pair.second);
            }
        });
}

void addChildCoderGroups(ModelTable& t) {
    using S = StoredCGModel;
    using M = CGModel;
    t.field(
        "childCoderGroups",
        [](DescriptionWriter& w, const M& model, const Place& p) {
            Json out = Json::array();
            const std::vector<ChildSource> sources = childSources(w, model.getChildCoderGroupManager(), p);
            const ChildSource none;
            for (std::size_t i = 0; i < sources.size(); ++i)
                out.push_back(childEntryFields().write(w, sources[i], none, p / i));
            return out;
        },
        [](DescriptionReader& r, JsonValue v, const Place& p, S& model) {
            std::map<std::string, std::string> childModels;
            std::size_t i = 0;
            for (const JsonValue element : r.array(v, p)) {
                ChildTarget target;
                target.manager = &model.getChildCoderGroupManager();
                target.childModels = &childModels;
                childEntryFields().read(r, element, p / i++, target);
            }
        });
}

} // namespace

const FieldTable<StoredCGModel, const CGModel>& modelFields() {
    static const auto table = [] {
        ModelTable t;
        // In the order a description lists them.
        addModelAttributes(t);
        addSystems(t);
        addVelTypes(t);
        addCGTypes(t);
        addVarGroups(t);
        addExternalInputs(t);
        addModelParameters(t);
        addRecordLists(t);
        addHierarchy(t);
        addQueueBlocks(t);
        addCoderDataGroups(t);
        addIOMap(t);
        addChildCoderGroups(t);
        return t;
    }();
    return table;
}

const FieldTable<ModelFileDescription, const ModelFileDescription>& fileFields() {
    using F = ModelFileDescription;
    static const auto table = [] {
        FieldTable<F, const F> t;
        t.enumeration("kind", fileKindNames(), &F::kind, [](F& f, F::Kind k) { f.kind = k; })
            .required()
            .text("name", &F::name, [](F& f, std::string n) { f.name = std::move(n); })
            .required()
            .field(
                "systems",
                [](DescriptionWriter& w, const F& f, const Place& p) {
                    if (!f.systems.empty() && f.kind != F::Kind::ModuleHeader &&
                        f.kind != F::Kind::ModuleSource)
                        w.fail(p, "only module header and module source files have systems");
                    return Json(f.systems);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, F& f) {
                    if (f.kind != F::Kind::ModuleHeader && f.kind != F::Kind::ModuleSource)
                        r.invalid(p, "only module header and module source files have systems");
                    for (const JsonValue element : r.array(v, p))
                        f.systems.push_back(r.index(element, p / f.systems.size(), ListKind::Systems, false));
                });
        return t;
    }();
    return table;
}

void checkModelReferences(DescriptionReader& reader, const CGModel& model) {
    // Variable groups name their parents by index: the chain must end.
    const auto& groups = model.getVarGroups();
    std::vector<int> state(groups.size(), 0); // 0 unvisited, 1 in the current walk, 2 done
    for (std::size_t i = 0; i < groups.size(); ++i) {
        std::vector<std::size_t> walk;
        for (int g = static_cast<int>(i); g != -1 && state[static_cast<std::size_t>(g)] != 2;
             g = groups[static_cast<std::size_t>(g)]->getParentVarGroupIndex()) {
            const auto k = static_cast<std::size_t>(g);
            if (state[k] == 1) {
                std::string chain;
                for (auto it = std::find(walk.begin(), walk.end(), k); it != walk.end(); ++it)
                    chain += std::to_string(*it) + " -> ";
                const Place root;
                const Place list = root / "varGroups";
                const Place group = list / walk.back();
                reader.fail(messages::ModelDescription::Cycle, group / "parentVarGroupIndex",
                            {"variable groups that are each other's parents: " + chain + std::to_string(k)});
            }
            state[k] = 1;
            walk.push_back(k);
        }
        for (std::size_t k : walk) state[k] = 2;
    }
    // An input in a variable group is known by the member of the group's
    // type at its member index.
    const auto& inputs = model.getExternalInputs();
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const int groupIndex = inputs[i]->getVarGroupIndex();
        if (groupIndex == -1) continue;
        const Place root;
        const Place list = root / "externalInputs";
        const Place place = list / i;
        const int typeIndex = groups[static_cast<std::size_t>(groupIndex)]->getCGTypeIndex();
        if (typeIndex == -1)
            reader.invalid(place / "varGroupIndex",
                           "the variable group " + std::to_string(groupIndex) +
                               " has no cgTypeIndex, so the input has no member name");
        const auto& members = model.getVelCGTypes()[static_cast<std::size_t>(typeIndex)]->getMembers();
        reader.checkIndex(inputs[i]->getVarGroupMemberIndex(), place / "varGroupMemberIndex",
                          "/cgTypes/" + std::to_string(typeIndex) + "/members", members.size());
    }
}

} // namespace VelCG::description
