// The graphical model in a description: the block hierarchy map, its
// subsystems and blocks with their ports, regions, states, parameters and
// data-interface records.

#include <algorithm>
#include <map>
#include <memory>

#include "CG/DataInterface.hpp"
#include "description/Diagnostics.hpp"
#include "description/Fields.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModelFactory.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/State.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredParameter.hpp"

namespace VelCG::description {

namespace {

using DataInterfaceDescription = CG::DataInterface::Description;

const FieldTable<DataInterfaceDescription, const DataInterfaceDescription>& dataInterfaceFields() {
    using D = DataInterfaceDescription;
    static const auto table = [] {
        FieldTable<D, const D> t;
        t.text(
             "identifier", [](const D& d) { return d.identifier; },
             [](D& d, std::string v) { d.identifier = v; })
            .text(
                "implementation", [](const D& d) { return d.implementation; },
                [](D& d, std::string v) { d.implementation = v; })
            .text(
                "owner", [](const D& d) { return d.owner; }, [](D& d, std::string v) { d.owner = v; })
            .text(
                "typeName", [](const D& d) { return d.typeName; },
                [](D& d, std::string v) { d.typeName = v; })
            .text(
                "graphicalName", [](const D& d) { return d.graphicalName; },
                [](D& d, std::string v) { d.graphicalName = v; });
        return t;
    }();
    return table;
}

struct BlockReference {
    int subsystem = -1;
    int block = -1;
};

struct PortReference {
    int subsystem = -1;
    int block = -1;
    int port = -1;
};

const FieldTable<BlockReference, const BlockReference>& blockReferenceFields() {
    using R = BlockReference;
    static const auto table = [] {
        FieldTable<R, const R> t;
        t.int32("subsystem", &R::subsystem, [](R& r, int v) { r.subsystem = v; })
            .required()
            .int32("block", &R::block, [](R& r, int v) { r.block = v; })
            .required();
        return t;
    }();
    return table;
}

const FieldTable<PortReference, const PortReference>& portReferenceFields() {
    using R = PortReference;
    static const auto table = [] {
        FieldTable<R, const R> t;
        t.int32("subsystem", &R::subsystem, [](R& r, int v) { r.subsystem = v; })
            .required()
            .int32("block", &R::block, [](R& r, int v) { r.block = v; })
            .required()
            .int32("port", &R::port, [](R& r, int v) { r.port = v; })
            .required();
        return t;
    }();
    return table;
}

std::string subsystemPointer(int subsystem) { return "/hierarchy/subsystems/" + std::to_string(subsystem); }

// Whether the output port a reference names exists already.
bool hasOutputPort(DescriptionReader& reader, const PortReference& source) {
    const auto& subsystems = reader.model().getBlockHierarchyMap()->getSubsystems();
    if (source.subsystem < 0 || static_cast<std::size_t>(source.subsystem) >= subsystems.size()) return false;
    const auto& blocks = subsystems[static_cast<std::size_t>(source.subsystem)]->getBlocks();
    if (source.block < 0 || static_cast<std::size_t>(source.block) >= blocks.size()) return false;
    const auto& ports = blocks[static_cast<std::size_t>(source.block)]->getDataOutputPorts();
    return source.port >= 0 && static_cast<std::size_t>(source.port) < ports.size();
}

// The block a reference names, or DanglingReference.
GraphicalBlock* blockAt(DescriptionReader& reader, int subsystem, int block, const Place& place) {
    const auto& subsystems = reader.model().getBlockHierarchyMap()->getSubsystems();
    reader.checkIndex(subsystem, place / "subsystem", "/hierarchy/subsystems", subsystems.size());
    const auto& blocks = subsystems[static_cast<std::size_t>(subsystem)]->getBlocks();
    reader.checkIndex(block, place / "block", subsystemPointer(subsystem) + "/blocks", blocks.size());
    return blocks[static_cast<std::size_t>(block)];
}

const FieldTable<Region, const Region>& regionFields() {
    static const auto table = [] {
        FieldTable<Region, const Region> t;
        t.text("source", &Region::getSource, &Region::setSource)
            .int32("offset", &Region::getOffset, &Region::setOffset)
            .int32s("dimensions", &Region::getDimensions, &Region::setDimensions)
            .int32("functionArgumentIdx", &Region::getFunctionArgumentIdx, &Region::setFunctionArgumentIdx)
            .field(
                "dataInterface",
                [](DescriptionWriter& w, const Region& r, const Place& p) {
                    return writeDataInterface(w, r.getDataInterface(), p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, Region& region) {
                    readDataInterface(r, v, p,
                                      [&](const CG::DataInterface* d) { region.setDataInterface(d); });
                });
        return t;
    }();
    return table;
}

const FieldTable<Port, const Port>& portFields() {
    static const auto table = [] {
        FieldTable<Port, const Port> t;
        t.wide("signalLabel", &Port::getSignalLabel, &Port::setSignalLabel)
            .boolean("testPoint", &Port::getTestPoint, &Port::setTestPoint)
            .boolean("mdlRefSimLoggableTestPoint", &Port::getMdlRefSimLoggableTestPoint,
                     &Port::setMdlRefSimLoggableTestPoint)
            .field(
                "graphicalSource",
                [](DescriptionWriter& w, const Port& port, const Place& p) {
                    const Port::SourceIndices source = port.getGrSrcPortIdx();
                    // Without a subsystem index the port has no source,
                    // whatever the other two say.
                    if (source.subsystem == -1) return Json();
                    const PortReference reference{source.subsystem, source.block, source.port};
                    const PortReference none;
                    return portReferenceFields().write(w, reference, none, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, Port& port) {
                    PortReference source;
                    portReferenceFields().read(r, v, p, source);
                    port.setGrSrcPortIdx(source.subsystem, source.block, source.port);
                    // A port read before this one needs no later check, as
                    // lists only grow; most sources are such ports.
                    if (hasOutputPort(r, source)) return;
                    r.defer([&r, source, pointer = p.pointer()] {
                        const Place place(pointer);
                        GraphicalBlock* block = blockAt(r, source.subsystem, source.block, place);
                        r.checkIndex(source.port, place / "port",
                                     subsystemPointer(source.subsystem) + "/blocks/" +
                                         std::to_string(source.block) + "/dataOutputPorts",
                                     block->getDataOutputPorts().size());
                    });
                })
            .list(
                "regions", &Port::getRegions,
                [](DescriptionWriter& w, const Region* region, const Place& p) {
                    const Region defaults;
                    return regionFields().write(w, *region, defaults, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, Port& port) {
                    auto region = std::make_unique<Region>();
                    regionFields().read(r, v, p, *region);
                    port.addRegion(std::move(region));
                });
        return t;
    }();
    return table;
}

const FieldTable<State, const State>& stateFields() {
    static const auto table = [] {
        FieldTable<State, const State> t;
        t.int32s("dimensions", &State::getDimensions, &State::setDimensions);
        return t;
    }();
    return table;
}

const FieldTable<StoredParameter, const ParameterImpl>& parameterFields() {
    static const auto table = [] {
        FieldTable<StoredParameter, const ParameterImpl> t;
        t.wide("name", &ParameterImpl::getName, &StoredParameter::setName)
            .field(
                "modelParameters",
                [](DescriptionWriter& w, const ParameterImpl& parameter, const Place& p) {
                    Json out = Json::array();
                    const auto& parameters = parameter.getModelParameters();
                    for (std::size_t i = 0; i < parameters.size(); ++i)
                        out.push_back(w.indexOf(parameters[i], p / i));
                    return out;
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, StoredParameter& parameter) {
                    // The model parameters are read before any block.
                    const auto& parameters = r.model().getModelParameters();
                    std::size_t i = 0;
                    for (const JsonValue element : r.array(v, p)) {
                        const Place place = p / i++;
                        const int index = r.int32(element, place);
                        r.checkIndex(index, place, "/modelParameters", parameters.size());
                        parameter.addModelParameter(parameters[static_cast<std::size_t>(index)]);
                    }
                });
        return t;
    }();
    return table;
}

// A list of ports of a block: which list, how to add to it, and whether
// it holds data output ports.
template <class Get, class Add>
void addPortList(FieldTable<StoredGraphicalBlock, GraphicalBlockIF>& t, const char* key, Get get, Add add,
                 bool outputs = false) {
    t.list(
        key, get,
        [](DescriptionWriter& w, const Port* port, const Place& p) {
            const Port defaults;
            return portFields().write(w, *port, defaults, p);
        },
        [add, outputs](DescriptionReader& r, JsonValue v, const Place& p, StoredGraphicalBlock& block) {
            auto port = std::make_unique<Port>();
            port->setCGModel(&r.model());
            portFields().read(r, v, p, *port);
            if (outputs && port->getGrSrcPortIdx().subsystem != -1) r.noteOutputPortSource();
            std::invoke(add, block, std::move(port));
        });
}

template <class Get, class Add>
void addStateList(FieldTable<StoredGraphicalBlock, GraphicalBlockIF>& t, const char* key, Get get, Add add) {
    t.list(
        key, get,
        [](DescriptionWriter& w, const State* state, const Place& p) {
            const State defaults;
            return stateFields().write(w, *state, defaults, p);
        },
        [add](DescriptionReader& r, JsonValue v, const Place& p, StoredGraphicalBlock& block) {
            auto state = std::make_unique<State>();
            stateFields().read(r, v, p, *state);
            std::invoke(add, block, std::move(state));
        });
}

template <class Get, class Add>
void addRecordList(FieldTable<StoredGraphicalBlock, GraphicalBlockIF>& t, const char* key, Get get, Add add) {
    t.list(
        key, get,
        [](DescriptionWriter& w, const DataInterfaceRecord* record, const Place& p) {
            const StoredDataInterfaceRecord defaults;
            return recordFields().write(w, *record->getImpl(), defaults, p);
        },
        [add](DescriptionReader& r, JsonValue v, const Place& p, StoredGraphicalBlock& block) {
            auto impl = std::make_unique<StoredDataInterfaceRecord>();
            recordFields().read(r, v, p, *impl);
            std::invoke(
                add, block,
                std::unique_ptr<DataInterfaceRecord>(r.factory().createDataInterfaceRecord(impl.release())));
        });
}

// A wide text field of a block, kept until the block is read and then set
// with the others in one step (readBlock): one allocation instead of one
// per field.
template <class Get>
void addBlockText(FieldTable<StoredGraphicalBlock, GraphicalBlockIF>& t, const char* key, Get get,
                  StoredGraphicalBlock::TextField field) {
    t.field(
        key,
        [get](DescriptionWriter& w, GraphicalBlockIF& block, const Place& p) {
            return w.wide(std::invoke(get, block), p);
        },
        [field](DescriptionReader& r, JsonValue v, const Place& p, StoredGraphicalBlock&) {
            r.keepBlockText(field, r.textView(v, p));
        });
}

const Enumeration<BlockVirtuality>& virtualityNames() {
    static const Enumeration<BlockVirtuality> names = {
        {"NonVirtual", BlockVirtuality::NonVirtual},
        {"Virtual", BlockVirtuality::Virtual},
        {"PostCompileVirtual", BlockVirtuality::PostCompileVirtual},
    };
    return names;
}

const Enumeration<GraphicalSubsystemType>& subsystemTypeNames() {
    static const Enumeration<GraphicalSubsystemType> names = [] {
        Enumeration<GraphicalSubsystemType> out;
        for (int value = 0; value <= static_cast<int>(GraphicalSubsystemType::Unknown); ++value) {
            const auto type = static_cast<GraphicalSubsystemType>(value);
            out.emplace_back(GraphicalSubsystem::getStringForSubsystemType(type), type);
        }
        return out;
    }();
    return names;
}

const FieldTable<StoredGraphicalSubsystem, const GraphicalSubsystem>& subsystemFields() {
    using S = StoredGraphicalSubsystem;
    using G = GraphicalSubsystem;
    static const auto table = [] {
        FieldTable<S, const G> t;
        t.wide("name", &G::getName, &S::setName)
            .wide("velName", &G::getVelName, &S::setVelName)
            .enumeration("type", subsystemTypeNames(), &G::getType, &S::setType)
            .wide("maskType", &G::getMaskType, &S::setMaskType)
            .wide("sid", &G::getSID, &G::setSID)
            .text("mangledPathName", &G::getMangledPathName, &G::setMangledPathName)
            .field(
                "subsystemBlock",
                [](DescriptionWriter& w, const G& subsystem, const Place& p) {
                    const auto& [s, b] = subsystem.getSubsystemBlockIndex();
                    if (s == -1 && b == -1) return Json();
                    const BlockReference reference{s, b};
                    const BlockReference none;
                    return blockReferenceFields().write(w, reference, none, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& subsystem) {
                    BlockReference reference;
                    blockReferenceFields().read(r, v, p, reference);
                    subsystem.setSubsystemBlockIndex({reference.subsystem, reference.block});
                    r.defer([&r, reference, pointer = p.pointer()] {
                        blockAt(r, reference.subsystem, reference.block, Place(pointer));
                    });
                })
            .index("nvOwnerSysIdx", ListKind::Systems, true, &G::getNVOwnerSysIdx, &G::setNVOwnerSysIdx)
            .int32("velContextSysNum", &G::getVelContextSysNum, &G::setVelContextSysNum)
            .field(
                "childSubsystems",
                [](DescriptionWriter& w, const G& subsystem, const Place& p) {
                    Json out = Json::array();
                    const auto& children = subsystem.getChildSubsystems();
                    for (std::size_t i = 0; i < children.size(); ++i)
                        out.push_back(w.indexOf(children[i], p / i));
                    return out;
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& subsystem) {
                    r.declaredChildren()[&subsystem] = {p.pointer(), r.int32s(v, p)};
                })
            .list(
                "blocks", &G::getBlocks,
                [](DescriptionWriter& w, GraphicalBlock* block, const Place& p) {
                    StoredGraphicalBlock defaults;
                    return blockFields().write(w, *block, defaults, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& subsystem) {
                    auto impl = std::make_unique<StoredGraphicalBlock>();
                    impl->setCGModel(&r.model());
                    readBlock(r, v, p, *impl);
                    subsystem.addGraphicalBlock(
                        std::unique_ptr<GraphicalBlock>(new GraphicalBlock(impl.release())));
                });
        return t;
    }();
    return table;
}

// The subsystems that finalize makes the children of each subsystem: the
// list is in breadth-first order, so the children of subsystem s are the
// next K_s subsystems after those of the subsystems before it, K_s being
// its number of subsystem blocks. Checks that they exist, that no subsystem
// would become its own descendant, and that each list of child subsystems
// the description gives agrees; then finalizes the map.
void finishHierarchy(DescriptionReader& reader, BlockHierarchyMap& map, const Place& place) {
    const auto& subsystems = map.getSubsystems();
    const std::size_t count = subsystems.size();
    std::vector<std::vector<int>> children(count);
    std::vector<int> parent(count, -1);
    std::size_t next = 1;
    for (std::size_t s = 0; s < count; ++s) {
        const std::size_t k = subsystems[s]->getSubsystemBlocks().size();
        for (std::size_t c = next; c < next + k; ++c) {
            children[s].push_back(static_cast<int>(c));
            if (c < count && parent[c] == -1) parent[c] = static_cast<int>(s);
        }
        next += k;
    }
    // Whether a is s or one of its ancestors; the walk is bounded, as the
    // parents may themselves form a cycle.
    auto isAncestorOrSelf = [&](int a, int s) {
        for (std::size_t steps = 0; s != -1 && steps <= count; ++steps) {
            if (s == a) return true;
            s = parent[static_cast<std::size_t>(s)];
        }
        return false;
    };
    auto listed = [](const std::vector<int>& list) {
        std::string out;
        for (std::size_t i = 0; i < list.size(); ++i) out += (i ? ", " : "") + std::to_string(list[i]);
        return "[" + out + "]";
    };

    auto& declared = reader.declaredChildren();
    for (std::size_t s = 0; s < count; ++s) {
        auto it = declared.find(subsystems[s]);
        if (it == declared.end()) continue;
        const auto& [listPointer, list] = it->second;
        const Place listPlace(listPointer);
        for (std::size_t i = 0; i < list.size(); ++i) {
            reader.checkIndex(list[i], listPlace / i, "/hierarchy/subsystems", count);
            if (isAncestorOrSelf(list[i], static_cast<int>(s)))
                reader.fail(messages::ModelDescription::Cycle, listPlace / i,
                            {"subsystem " + std::to_string(list[i]) + " would be a child of subsystem " +
                             std::to_string(s) + ", its own descendant"});
        }
    }
    for (std::size_t s = 0; s < count; ++s) {
        const Place subsystemPlace = place / s;
        if (!children[s].empty() && static_cast<std::size_t>(children[s].back()) >= count)
            reader.invalid(subsystemPlace / "blocks",
                           "its " + std::to_string(children[s].size()) +
                               " subsystem block(s) need the subsystems " + listed(children[s]) +
                               " of the breadth-first list, which has " + std::to_string(count) + " entries");
        for (int c : children[s]) {
            if (static_cast<std::size_t>(c) > s) continue;
            if (isAncestorOrSelf(c, static_cast<int>(s)))
                reader.fail(messages::ModelDescription::Cycle, subsystemPlace / "blocks",
                            {"its subsystem blocks make subsystem " + std::to_string(c) +
                             " a child of subsystem " + std::to_string(s) + ", its own descendant"});
            reader.invalid(subsystemPlace / "blocks",
                           "its subsystem blocks make subsystem " + std::to_string(c) +
                               " a child of subsystem " + std::to_string(s) +
                               ", but the subsystems must be in breadth-first order, children after parents");
        }
        auto it = declared.find(subsystems[s]);
        if (it != declared.end() && it->second.second != children[s])
            reader.invalid(Place(it->second.first),
                           "the child subsystems " + listed(it->second.second) + " differ from " +
                               listed(children[s]) +
                               ", which the breadth-first order of the subsystems and the "
                               "subsystem blocks give");
    }
    declared.clear();
    map.finalize();
}

} // namespace

Json writeDataInterface(DescriptionWriter& writer, const CG::DataInterface* dataInterface,
                        const Place& place) {
    if (!dataInterface) return Json();
    const DataInterfaceDescription defaults;
    return dataInterfaceFields().write(writer, dataInterface->getDescription(), defaults, place);
}

void readDataInterface(DescriptionReader& reader, JsonValue value, const Place& place,
                       const std::function<void(const CG::DataInterface*)>& set) {
    DataInterfaceDescription description;
    dataInterfaceFields().read(reader, value, place, description);
    // The object is created holding one reference, which is ours to drop
    // once set has taken its own.
    struct Release {
        void operator()(const CG::DataInterface* d) const { d->release(); }
    };
    std::unique_ptr<CG::DataInterface, Release> created(CG::DataInterface::create(std::move(description)));
    set(created.get());
}

Json writeBlockReference(DescriptionWriter& writer, const GraphicalBlock* block, const Place& place) {
    const auto [s, b] = writer.placeOf(block, place);
    const BlockReference reference{s, b};
    const BlockReference none;
    return blockReferenceFields().write(writer, reference, none, place);
}

void readBlockReference(DescriptionReader& reader, JsonValue value, const Place& place,
                        std::function<void(GraphicalBlock*)> use) {
    BlockReference reference;
    blockReferenceFields().read(reader, value, place, reference);
    reader.defer([&reader, reference, pointer = place.pointer(), use = std::move(use)] {
        use(blockAt(reader, reference.subsystem, reference.block, Place(pointer)));
    });
}

const FieldTable<StoredDataInterfaceRecord, const DataInterfaceRecordImpl>& recordFields() {
    static const auto table = [] {
        FieldTable<StoredDataInterfaceRecord, const DataInterfaceRecordImpl> t;
        t.field(
            "dataInterface",
            [](DescriptionWriter& w, const DataInterfaceRecordImpl& record, const Place& p) {
                return writeDataInterface(w, record.hasDataInterface() ? record.getDataInterface() : nullptr,
                                          p);
            },
            [](DescriptionReader& r, JsonValue v, const Place& p, StoredDataInterfaceRecord& record) {
                readDataInterface(r, v, p, [&](const CG::DataInterface* d) { record.setDataInterface(d); });
            });
        return t;
    }();
    return table;
}

const FieldTable<StoredGraphicalBlock, GraphicalBlockIF>& blockFields() {
    using S = StoredGraphicalBlock;
    using B = GraphicalBlockIF;
    static const auto table = [] {
        FieldTable<S, B> t;
        using Text = S::TextField;
        addBlockText(t, "name", &B::getName, Text::Name);
        addBlockText(t, "velName", &B::getVelName, Text::VelName);
        addBlockText(t, "sid", &B::getSID, Text::SID);
        addBlockText(t, "compactSID", &B::getCompactSID, Text::CompactSID);
        addBlockText(t, "blockPath", &B::getBlockPath, Text::BlockPath);
        addBlockText(t, "type", &B::getType, Text::Type);
        addBlockText(t, "description", &B::getDescription, Text::Description);
        addBlockText(t, "referencedModelName", &B::getReferencedModelName, Text::ReferencedModelName);
        t.boolean("isProtectedModelBlock", &B::getIsProtectedModelBlock, &S::setIsProtectedModelBlock)
            .enumeration("virtual", virtualityNames(), &B::getVirtual, &S::setVirtual)
            .int32("numFcnCallOutputPorts", &B::getNumFcnCallOutputPorts, &S::setNumFcnCallOutputPorts)
            .boolean("isReduced", &B::isReduced, &S::setIsReduced)
            .text("rlsCommentName", &B::getRLSCommentName, &S::setRLSCommentName)
            .boolean("isInport", &B::isInport, &S::setIsInport)
            .boolean("isOutport", &B::isOutport, &S::setIsOutport)
            .boolean("isSubsystem", &B::isSubsystem, &S::setIsSubsystem)
            .boolean("isDataStoreMemory", &B::isDataStoreMemory, &S::setIsDataStoreMemory);
        addPortList(t, "dataInputPorts", &B::getDataInputPorts, &S::addDataInputPort);
        addPortList(t, "dataOutputPorts", &B::getDataOutputPorts, &S::addDataOutputPort, true);
        addPortList(t, "controlInputPorts", &B::getControlInputPorts, &S::addControlInputPort);
        t.list(
            "parameters", &B::getParameters,
            [](DescriptionWriter& w, const Parameter* parameter, const Place& p) {
                const StoredParameter defaults;
                return parameterFields().write(w, *parameter->getImpl(), defaults, p);
            },
            [](DescriptionReader& r, JsonValue v, const Place& p, S& block) {
                auto impl = std::make_unique<StoredParameter>();
                parameterFields().read(r, v, p, *impl);
                block.addParameter(std::unique_ptr<Parameter>(r.factory().createParameter(impl.release())));
            });
        addStateList(t, "continuousStates", &B::getContinuousStates, &S::addContinuousState);
        addStateList(t, "derivatives", &B::getDerivatives, &S::addDerivative);
        addRecordList(t, "discreteStates", &B::getDiscreteStates, &S::addDiscreteState);
        addRecordList(t, "dWorks", &B::getDWorks, &S::addDWork);
        return t;
    }();
    return table;
}

void readBlock(DescriptionReader& reader, JsonValue value, const Place& place, StoredGraphicalBlock& block) {
    blockFields().read(reader, value, place, block);
    reader.setBlockTexts(block);
}

const FieldTable<BlockHierarchyMap, const BlockHierarchyMap>& hierarchyFields() {
    static const auto table = [] {
        FieldTable<BlockHierarchyMap, const BlockHierarchyMap> t;
        t.field(
            "subsystems",
            [](DescriptionWriter& w, const BlockHierarchyMap& map, const Place& p) {
                Json out = Json::array();
                const auto& subsystems = map.getSubsystems();
                for (std::size_t i = 0; i < subsystems.size(); ++i) {
                    const StoredGraphicalSubsystem defaults;
                    out.push_back(subsystemFields().write(w, *subsystems[i], defaults, p / i));
                }
                return out;
            },
            [](DescriptionReader& r, JsonValue v, const Place& p, BlockHierarchyMap& map) {
                std::size_t i = 0;
                for (const JsonValue element : r.array(v, p)) {
                    // In the map while it is read, so that its blocks can be
                    // found as soon as they are read.
                    auto* subsystem = static_cast<StoredGraphicalSubsystem*>(
                        map.addGraphicalSubsystem(std::make_unique<StoredGraphicalSubsystem>()));
                    subsystemFields().read(r, element, p / i++, *subsystem);
                }
                finishHierarchy(r, map, p);
            });
        return t;
    }();
    return table;
}

void checkGraphicalSources(DescriptionReader& reader, const CGModel& model) {
    // Sources are data output ports, so a cycle runs through output ports
    // of blocks of the map only. The ports are numbered in map order, and
    // each is walked from once.
    if (!reader.outputPortSources()) return;
    const auto& subsystems = model.getBlockHierarchyMap()->getSubsystems();
    std::vector<std::size_t> firstBlock{0};
    for (const GraphicalSubsystem* subsystem : subsystems)
        firstBlock.push_back(firstBlock.back() + subsystem->getBlocks().size());
    std::vector<std::size_t> firstPort{0};
    firstPort.reserve(firstBlock.back() + 1);
    for (const GraphicalSubsystem* subsystem : subsystems)
        for (const GraphicalBlock* block : subsystem->getBlocks())
            firstPort.push_back(firstPort.back() + block->getDataOutputPorts().size());
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    // The number of each port's source; the indices were checked to exist
    // before this runs.
    std::vector<std::size_t> sourceOf;
    sourceOf.reserve(firstPort.back());
    for (const GraphicalSubsystem* subsystem : subsystems)
        for (const GraphicalBlock* block : subsystem->getBlocks())
            for (const Port* port : block->getDataOutputPorts()) {
                const Port::SourceIndices source = port->getGrSrcPortIdx();
                sourceOf.push_back(source.subsystem == -1
                                       ? kNone
                                       : firstPort[firstBlock[static_cast<std::size_t>(source.subsystem)] +
                                                   static_cast<std::size_t>(source.block)] +
                                             static_cast<std::size_t>(source.port));
            }
    // Where port number n stands, for the message.
    auto pointerOf = [&](std::size_t n) {
        const std::size_t block =
            static_cast<std::size_t>(std::upper_bound(firstPort.begin(), firstPort.end(), n) -
                                     firstPort.begin()) -
            1;
        const std::size_t s =
            static_cast<std::size_t>(std::upper_bound(firstBlock.begin(), firstBlock.end(), block) -
                                     firstBlock.begin()) -
            1;
        return "/hierarchy/subsystems/" + std::to_string(s) + "/blocks/" +
               std::to_string(block - firstBlock[s]) + "/dataOutputPorts/" +
               std::to_string(n - firstPort[block]);
    };
    enum Mark : unsigned char { kUnvisited, kInWalk, kDone };
    std::vector<Mark> marks(sourceOf.size(), kUnvisited);
    std::vector<std::size_t> walk;
    for (std::size_t start = 0; start < sourceOf.size(); ++start) {
        for (std::size_t n = start; n != kNone && marks[n] == kUnvisited; n = sourceOf[n]) {
            marks[n] = kInWalk;
            walk.push_back(n);
            const std::size_t source = sourceOf[n];
            if (source != kNone && marks[source] == kInWalk) {
                const std::string sourcePointer = pointerOf(source);
                const Place sourcePlace(sourcePointer);
                reader.fail(messages::ModelDescription::Cycle, sourcePlace / "graphicalSource",
                            {"following the graphical sources from this port leads back to it through " +
                             pointerOf(n)});
            }
        }
        for (std::size_t n : walk) marks[n] = kDone;
        walk.clear();
    }
}

} // namespace VelCG::description
