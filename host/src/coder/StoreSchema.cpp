// The code descriptor file format.
//
// A store is an SQLite 3 database file (conventionally named
// "codedescriptor.strata") that identifies itself with
// PRAGMA application_id = 0x56434744 ("VCGD") and carries its format version
// in PRAGMA user_version (this is version 2). A reader refuses a file whose
// application id differs, and a file whose version is newer than its own;
// it never writes to either. Version 1 lacked the table "UnfinishedRun"
// (below): a reader reads such a file as it is, and the first transaction
// written to it adds the table and sets version 2.
//
// Each record kind (coder::descriptor::recordKinds(), in this order: Model,
// System, BlockHierarchyMap, GraphicalSystem, GraphicalBlock, Port, Region,
// State, BlockParameter, ModelParameter, DataInterface, ToAsyncQueueBlock,
// ExternalInput, IOMap, CoderGroup) is a STRICT table named after the kind:
//
//   CREATE TABLE "Port" (
//     id INTEGER PRIMARY KEY,                        -- the record's key
//     "GraphicalName" TEXT NOT NULL DEFAULT '',      -- one column per field
//     "Connected" INTEGER NOT NULL DEFAULT 0 CHECK ("Connected" IN (0, 1)),
//     "GraphicalSource" INTEGER REFERENCES "Port"(id), -- a reference, or NULL
//     ...);
//
// Texts are UTF-8, booleans 0 or 1, integers carry a CHECK of their C++
// range, reals are REAL. Optional fields (GraphicalSystem.SubsystemType,
// GraphicalBlock.ParentSystemSID, ModelParameter.GraphicalSourceSID) and
// references are NULL while unset.
//
// Each sequence of a kind is a table "<Kind>_<Sequence>" holding one row per
// element, keyed by its owner and its position (0, 1, 2, ... in append
// order):
//
//   CREATE TABLE "GraphicalBlock_DataInputPorts" (
//     owner INTEGER NOT NULL REFERENCES "GraphicalBlock"(id),
//     position INTEGER NOT NULL,
//     element INTEGER NOT NULL REFERENCES "Port"(id),   -- or: value INTEGER / TEXT
//     PRIMARY KEY (owner, position)) STRICT, WITHOUT ROWID;
//
// Lists of integers (dimensions, enumeration values, port indices) and of
// texts (enumeration labels, SIDs) hold the value itself in a "value"
// column. The store holds one model: the first row of "Model" is the root
// of the description, and writing a new model deletes every row first.
//
// One more table, not a record kind, names the run that stored the model
// and means to add to it in a later transaction (Repository::
// setUnfinishedRun); it holds no row otherwise:
//
//   CREATE TABLE "UnfinishedRun" (
//     id INTEGER PRIMARY KEY CHECK (id = 1), token TEXT NOT NULL) STRICT;
//
// Foreign keys are declared for readers and checked by
// Repository::checkIntegrity (PRAGMA foreign_key_check); the writer does not
// enforce them per statement, since every id it writes comes from a record
// of the same store. Writes use SQLite's rollback journal, so a process that
// dies inside a transaction leaves the file as it was at the last commit,
// plus a hot journal ("<file>-journal" with a non-zero header) that the next
// connection allowed to write rolls back when it first reads. A reader
// opened for reading only does that through a connection of its own (see
// Store::firstRead).

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <cstdint>
#include <string>

#include "RecordDefinition.hpp"
#include "Store.hpp"
#include "StoreSql.hpp"
#include "coder/descriptor/Descriptors.hpp"

namespace coder {

// Every record kind with its list of fields and sequences, in the order its
// tables are created.
#define CODER_DESCRIPTOR_KINDS(KIND)                               \
    KIND(Model, CODER_DESCRIPTOR_MODEL)                            \
    KIND(System, CODER_DESCRIPTOR_SYSTEM)                          \
    KIND(BlockHierarchyMap, CODER_DESCRIPTOR_BLOCK_HIERARCHY_MAP)  \
    KIND(GraphicalSystem, CODER_DESCRIPTOR_GRAPHICAL_SYSTEM)       \
    KIND(GraphicalBlock, CODER_DESCRIPTOR_GRAPHICAL_BLOCK)         \
    KIND(Port, CODER_DESCRIPTOR_PORT)                              \
    KIND(Region, CODER_DESCRIPTOR_REGION)                          \
    KIND(State, CODER_DESCRIPTOR_STATE)                            \
    KIND(BlockParameter, CODER_DESCRIPTOR_BLOCK_PARAMETER)         \
    KIND(ModelParameter, CODER_DESCRIPTOR_MODEL_PARAMETER)         \
    KIND(DataInterface, CODER_DESCRIPTOR_DATA_INTERFACE)           \
    KIND(ToAsyncQueueBlock, CODER_DESCRIPTOR_TO_ASYNC_QUEUE_BLOCK) \
    KIND(ExternalInput, CODER_DESCRIPTOR_EXTERNAL_INPUT)           \
    KIND(IOMap, CODER_DESCRIPTOR_IO_MAP)                           \
    KIND(CoderGroup, CODER_DESCRIPTOR_CODER_GROUP)

namespace descriptor {

const std::vector<const RecordKind*>& recordKinds() {
#define CODER_DESCRIPTOR_KIND_ADDRESS(Kind, LIST) &Kind::kind(),
    static const std::vector<const RecordKind*> kinds = {
        CODER_DESCRIPTOR_KINDS(CODER_DESCRIPTOR_KIND_ADDRESS)};
#undef CODER_DESCRIPTOR_KIND_ADDRESS
    return kinds;
}

namespace {

// A digest (64-bit FNV-1a) of the tables that the record lists describe:
// each kind's name, then each column's name, type, range and whether it may
// be NULL, each reference's target and each sequence's element. The file
// format follows from the lists, but its version number does not; the
// static_assert below keeps the two together.
class SchemaDigest {
public:
    constexpr void add(const char* text) {
        for (; *text; ++text) mix(static_cast<unsigned char>(*text));
        mix(0xff); // ends the text
    }
    constexpr void add(std::int64_t number) {
        for (int byte = 0; byte < 8; ++byte) mix((static_cast<std::uint64_t>(number) >> (8 * byte)) & 0xff);
    }
    constexpr void column(const FieldInfo& field) {
        add(field.name);
        add(static_cast<std::int64_t>(field.type));
        add(std::int64_t{field.optional});
        add(field.min);
        add(field.max);
    }
    constexpr void named(const char* what, const char* name, const char* target) {
        add(what);
        add(name);
        add(target);
    }
    constexpr std::uint64_t value() const { return value_; }

private:
    constexpr void mix(std::uint64_t byte) { value_ = (value_ ^ byte) * 1099511628211ull; }

    std::uint64_t value_ = 14695981039346656037ull;
};

#define CODER_DESCRIPTOR_DIGEST_KIND(Kind, LIST)                                                             \
    digest.add(#Kind);                                                                                       \
    LIST(CODER_DESCRIPTOR_DIGEST_VALUE, CODER_DESCRIPTOR_DIGEST_OPTIONAL, CODER_DESCRIPTOR_DIGEST_REFERENCE, \
         CODER_DESCRIPTOR_DIGEST_SEQUENCE)
#define CODER_DESCRIPTOR_DIGEST_VALUE(Name, T) digest.column(detail::valueField<T>(#Name, false));
#define CODER_DESCRIPTOR_DIGEST_OPTIONAL(Name, T) digest.column(detail::optionalField<T>(#Name));
#define CODER_DESCRIPTOR_DIGEST_REFERENCE(Name, K) digest.named("reference", #Name, #K);
#define CODER_DESCRIPTOR_DIGEST_SEQUENCE(Name, E) digest.named("sequence", #Name, #E);

constexpr std::uint64_t schemaDigest() {
    SchemaDigest digest;
    CODER_DESCRIPTOR_KINDS(CODER_DESCRIPTOR_DIGEST_KIND)
    return digest.value();
}

// A change to the record lists is a new file format: raise
// Repository::kFormatVersion, let validateOrCreate read (or upgrade) the
// stores of the format before, describe the format at the top of this file,
// then take the new digest.
static_assert(Repository::kFormatVersion == 2 && schemaDigest() == 0x97580ea01614ba06ull,
              "the record lists no longer describe format 2 of the store");

} // namespace

} // namespace descriptor

namespace detail {

using descriptor::FieldInfo;
using descriptor::FieldType;

const char* const kUnfinishedRunTable =
    "CREATE TABLE \"UnfinishedRun\" (id INTEGER PRIMARY KEY CHECK (id = 1), token TEXT NOT NULL) STRICT";

namespace {

std::string columnDefinition(const FieldInfo& field) {
    std::string name = quoted(field.name);
    switch (field.type) {
        case FieldType::Boolean:
            return name + " INTEGER NOT NULL DEFAULT 0 CHECK (" + name + " IN (0, 1))";
        case FieldType::Integer:
            return name + " INTEGER NOT NULL DEFAULT 0 CHECK (" + name + " BETWEEN " +
                   std::to_string(field.min) + " AND " + std::to_string(field.max) + ")";
        case FieldType::Real:
            return name + " REAL NOT NULL DEFAULT 0";
        case FieldType::Text:
            return field.optional ? name + " TEXT" : name + " TEXT NOT NULL DEFAULT ''";
        case FieldType::Reference:
            return name + " INTEGER REFERENCES " + quoted(field.target().name) + "(id)";
    }
    return name;
}

} // namespace

void Store::createSchema() {
    begin();
    try {
        // Another connection may have created the schema while we waited for
        // the write lock.
        if (db_->execAndGet("PRAGMA application_id").getInt() == Repository::kApplicationId) {
            db_->exec("COMMIT");
            return;
        }
        for (const RecordKind* kind : descriptor::recordKinds()) {
            std::string sql = "CREATE TABLE " + quoted(kind->name) + " (id INTEGER PRIMARY KEY";
            for (const auto& field : kind->fields) sql += ", " + columnDefinition(field);
            db_->exec(sql + ") STRICT");
            for (const auto& sequence : kind->sequences) {
                std::string element = sequence.element ? "element INTEGER NOT NULL REFERENCES " +
                                                             quoted(sequence.element().name) + "(id)"
                                      : sequence.valueType == FieldType::Integer ? "value INTEGER NOT NULL"
                                                                                 : "value TEXT NOT NULL";
                db_->exec("CREATE TABLE " + quoted(sequenceTable(*kind, sequence)) +
                          " (owner INTEGER NOT NULL REFERENCES " + quoted(kind->name) +
                          "(id), position INTEGER NOT NULL, " + element +
                          ", PRIMARY KEY (owner, position)) STRICT, WITHOUT ROWID");
            }
        }
        db_->exec(kUnfinishedRunTable);
        db_->exec("PRAGMA application_id = " + std::to_string(Repository::kApplicationId));
        db_->exec("PRAGMA user_version = " + std::to_string(Repository::kFormatVersion));
        db_->exec("COMMIT");
    } catch (const SQLite::Exception& e) {
        rollback();
        raise(e);
    }
}

} // namespace detail
} // namespace coder
