#pragma once

// The field tables of the model description: what each kind of object of
// the model looks like in a description. Reader and writer both go through
// these tables, so each field is named once. The tables are built on first
// use and never change afterwards (safe to share between threads).

#include "CG/Type.hpp"
#include "description/FieldTable.hpp"
#include "description/Json.hpp"

namespace CG {
class DataInterface;
}

namespace VelCG {
class CGModel;
class GraphicalBlock;
class StoredCGModel;
class StoredGraphicalBlock;
class StoredVelType;
class ToAsyncQueueBlock;
class VelCGType;
class VelType;
class BlockHierarchyMap;
class DataInterfaceRecordImpl;
class StoredDataInterfaceRecord;
class GraphicalBlockIF;
struct ModelFileDescription;
} // namespace VelCG

namespace VelCG::description {

// The top level of a description, without "format", "formatVersion" and
// "files" (ModelFields.cpp).
const FieldTable<StoredCGModel, const CGModel>& modelFields();
// One entry of "files" (ModelFields.cpp).
const FieldTable<ModelFileDescription, const ModelFileDescription>& fileFields();

// Types (TypeFields.cpp).
const FieldTable<StoredVelType, const VelType>& velTypeFields();
const FieldTable<VelCGType, const VelCGType>& cgTypeFields();
// A type of the code generator's intermediate representation, written as
// a tree (shared parts are written once per use).
Json writeIRType(DescriptionWriter& writer, const CG::Type& type, const Place& place);
CG::Type::Ptr readIRType(DescriptionReader& reader, JsonValue value, const Place& place);

// The graphical model (HierarchyFields.cpp).
const FieldTable<BlockHierarchyMap, const BlockHierarchyMap>& hierarchyFields();
const FieldTable<StoredGraphicalBlock, GraphicalBlockIF>& blockFields();
// Reads a block through blockFields.
void readBlock(DescriptionReader& reader, JsonValue value, const Place& place, StoredGraphicalBlock& block);
const FieldTable<StoredDataInterfaceRecord, const DataInterfaceRecordImpl>& recordFields();

// A data interface: null for none.
Json writeDataInterface(DescriptionWriter& writer, const CG::DataInterface* dataInterface,
                        const Place& place);
// Sets the described data interface through set, which takes its own
// reference.
void readDataInterface(DescriptionReader& reader, JsonValue value, const Place& place,
                       const std::function<void(const CG::DataInterface*)>& set);

// A block named by its place in the block hierarchy map:
// {"subsystem": s, "block": b}.
Json writeBlockReference(DescriptionWriter& writer, const GraphicalBlock* block, const Place& place);
// Reads the reference and, once the whole document is read, hands the
// block to use.
void readBlockReference(DescriptionReader& reader, JsonValue value, const Place& place,
                        std::function<void(GraphicalBlock*)> use);

// Checks that need the whole model: cycles of graphical sources of ports
// (HierarchyFields.cpp), constructed types without a base and cycles of
// matrix types (TypeFields.cpp), cycles of parent variable groups and
// external inputs whose member does not exist (ModelFields.cpp).
void checkGraphicalSources(DescriptionReader& reader, const CGModel& model);
void checkTypeChains(DescriptionReader& reader, const CGModel& model);
void checkModelReferences(DescriptionReader& reader, const CGModel& model);

} // namespace VelCG::description
