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
#include "Store.hpp"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <cassert>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <sqlite3.h>

#include "RecordDefinition.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "vel/diag/Diagnostic.hpp"

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
using descriptor::SequenceInfo;

namespace {

std::string quoted(const std::string& name) { return '"' + name + '"'; }

const char* const kUnfinishedRunTable =
    "CREATE TABLE \"UnfinishedRun\" (id INTEGER PRIMARY KEY CHECK (id = 1), token TEXT NOT NULL) STRICT";

std::string sequenceTable(const RecordKind& kind, const SequenceInfo& sequence) {
    return std::string(kind.name) + "_" + sequence.name;
}

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

std::string describe(const SQLite::Exception& error) {
    std::string text = error.what();
    return text.empty() ? "SQLite error " + std::to_string(error.getErrorCode()) : text;
}

// The system error behind the last I/O failure on db; SQLite's text for it
// ("disk I/O error") does not say which. A failure at commit is recorded
// only by the database file, a failure of a statement by the connection.
int lastSystemError(sqlite3* db) {
    int error = 0;
    if (sqlite3_file_control(db, "main", SQLITE_FCNTL_LAST_ERRNO, &error) != SQLITE_OK || error == 0)
        error = sqlite3_system_errno(db);
    return error;
}

// Why a connection could not roll back the transaction of a writer that
// stopped, from the failure of its first read (which is when SQLite rolls
// back); empty when the failure is another one.
std::string rollbackFailure(const SQLite::Exception& error, const std::string& path) {
    switch (error.getExtendedErrorCode()) {
        case SQLITE_READONLY_ROLLBACK:
        case SQLITE_READONLY_RECOVERY: // the same, in WAL mode
            return "this process may not write the file";
        case SQLITE_READONLY_DIRECTORY:
        case SQLITE_IOERR_DELETE:
            return "the directory does not let the journal be deleted";
        default:
            break;
    }
    std::error_code ec;
    return (error.getErrorCode() & 0xff) == SQLITE_CANTOPEN &&
                   std::filesystem::exists(std::filesystem::u8path(path + "-journal"), ec)
               ? "the journal cannot be opened for writing"
               : "";
}

// Resets a statement when leaving scope, also when a read throws, so that
// it holds no read lock and can be reused. Bindings stay: every use binds
// every parameter again.
struct ResetGuard {
    SQLite::Statement& statement;
    ~ResetGuard() { statement.tryReset(); }
};

} // namespace

struct Store::SequenceStatements {
    std::unique_ptr<SQLite::Statement> insert;
    std::unique_ptr<SQLite::Statement> count;
    std::unique_ptr<SQLite::Statement> at;
    std::unique_ptr<SQLite::Statement> maxOwner;
    // Appends come in runs on one owner: remember its next position so that
    // a run costs one insert per element and no read.
    std::int64_t cachedOwner = 0;
    std::int64_t nextPosition = -1;
    // The highest owner with elements (-1: not read yet). Records get
    // increasing ids, so an owner above it has an empty list, and the first
    // append to a new record needs no read either.
    std::int64_t highestOwner = -1;
};

struct Store::KindStatements {
    std::unique_ptr<SQLite::Statement> insert;
    std::unique_ptr<SQLite::Statement> select;
    std::vector<std::unique_ptr<SQLite::Statement>> updateReference;
    std::vector<SequenceStatements> sequences;
};

Store::Store(const std::filesystem::path& path, const RepositoryOptions& options)
    : pathText_(path.u8string()), readOnly_(options.access == RepositoryOptions::Access::ReadOnly) {
    // SQLite takes the path as a C string: one holding a NUL would open the
    // file named by the text before it, so such a path is refused, with the
    // NUL shown in the message.
    if (pathText_.find('\0') != std::string::npos) {
        std::string shown;
        for (char c : pathText_) shown += c ? std::string(1, c) : "\\0";
        vel::diag::throwError("coder:Repository:CannotOpen", {shown, "the path holds a NUL character"});
    }
    int flags = readOnly_ ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    try {
        db_ = std::make_unique<SQLite::Database>(pathText_, flags, options.busyTimeoutMs);
    } catch (const SQLite::Exception& e) {
        vel::diag::throwError("coder:Repository:CannotOpen", {pathText_, describe(e)});
    }
    // SQLite opens a file it may not write for reading only, silently.
    writeProtected_ = !readOnly_ && sqlite3_db_readonly(db_->getHandle(), "main") == 1;
    firstRead(options);
    validateOrCreate(options);
}

Store::~Store() { close(); }

void Store::close() noexcept {
    if (!db_) return;
    rollback();
    statements_.clear();
    db_.reset();
}

void Store::requireOpen() const {
    if (!db_) vel::diag::throwError("coder:descriptor:Closed", {pathText_});
}

void Store::requireTransaction() const {
    requireOpen();
    if (!inTransaction()) vel::diag::throwError("coder:Repository:NoTransaction", {pathText_});
}

bool Store::inTransaction() const { return db_ && sqlite3_get_autocommit(db_->getHandle()) == 0; }

void Store::raise(const SQLite::Exception& error) const {
    const int code = error.getErrorCode() & 0xff;
    const char* key = "Failed";
    std::string reason = describe(error);
    const int systemError = db_ ? lastSystemError(db_->getHandle()) : 0;
#if !defined(_WIN32)
    if (systemError != 0 && (code == SQLITE_IOERR || code == SQLITE_CANTOPEN))
        reason += std::string(" (") + std::strerror(systemError) + ")";
#endif
    switch (code) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            key = "Busy";
            break;
        case SQLITE_FULL:
            key = "Full";
            break;
        case SQLITE_IOERR:
            // The disk is full, or the file reached the process's size limit.
            if (systemError == ENOSPC || systemError == EFBIG) key = "Full";
            break;
        case SQLITE_READONLY:
            key = "ReadOnly";
            if (error.getExtendedErrorCode() == SQLITE_READONLY_DIRECTORY)
                reason += " (the directory does not let the journal be created)";
            // A writer stopped after this connection was opened.
            if (error.getExtendedErrorCode() == SQLITE_READONLY_ROLLBACK ||
                error.getExtendedErrorCode() == SQLITE_READONLY_RECOVERY) {
                key = "LeftMidWrite";
                reason =
                    readOnly_ ? "the repository is open for reading only" : rollbackFailure(error, pathText_);
            }
            break;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            key = "Corrupt";
            break;
        case SQLITE_CANTOPEN:
            key = "CannotOpen";
            break;
        default:
            break;
    }
    vel::diag::throwError(std::string("coder:Repository:") + key, {pathText_, reason});
}

void Store::begin() {
    requireOpen();
    if (inTransaction()) vel::diag::throwError("coder:Repository:TransactionActive", {pathText_});
    if (readOnly_) vel::diag::throwError("coder:Repository:ReadOnly", {pathText_, "opened for reading only"});
    if (writeProtected_)
        vel::diag::throwError("coder:Repository:ReadOnly",
                              {pathText_, "the file cannot be opened for writing"});
    forgetPositions();
    newTransactionState();
    try {
        // IMMEDIATE takes the write lock now, so two writers wait for each
        // other here (up to the busy timeout) instead of failing mid-way.
        db_->exec("BEGIN IMMEDIATE");
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
    try {
        // A file of format 1 becomes one of this format with the first
        // transaction written to it (and stays as it was if that rolls back).
        if (db_->execAndGet("PRAGMA user_version").getInt() == 1) {
            db_->exec(kUnfinishedRunTable);
            db_->exec("PRAGMA user_version = " + std::to_string(Repository::kFormatVersion));
        }
    } catch (const SQLite::Exception& e) {
        rollback();
        raise(e);
    }
}

bool Store::beginRead() {
    requireOpen();
    if (inTransaction()) return false;
    newTransactionState();
    try {
        db_->exec("BEGIN");
        // A deferred transaction locks at its first read: take the lock now
        // so that the view starts here.
        db_->execAndGet("SELECT count(*) FROM sqlite_schema");
    } catch (const SQLite::Exception& e) {
        rollback();
        raise(e);
    }
    return true;
}

void Store::commit() {
    requireTransaction();
    newTransactionState();
    try {
        db_->exec("COMMIT");
    } catch (const SQLite::Exception& e) {
        // A failed COMMIT may leave the transaction open; end it so that the
        // file stays at its last commit.
        rollback();
        raise(e);
    }
}

void Store::rollback() noexcept {
    forgetPositions();
    newTransactionState();
    if (!inTransaction()) return;
    sqlite3_exec(db_->getHandle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Store::forgetPositions() {
    for (auto& [kind, statements] : statements_) {
        for (auto& sequence : statements->sequences) {
            sequence.nextPosition = -1;
            sequence.highestOwner = -1;
        }
    }
}

// The first read rolls back the transaction of a writer that stopped, but
// only on a connection that may write: a read-only one fails with
// SQLITE_READONLY_ROLLBACK ("attempt to write a readonly database"). A
// reader then rolls back through a short read-write connection of its own,
// and reads the file as that left it. Where this process may not write the
// file or its directory, "coder:Repository:LeftMidWrite" says what to do
// instead. Other failures are left to validateOrCreate, which meets them
// again.
void Store::firstRead(const RepositoryOptions& options) {
    try {
        db_->execAndGet("PRAGMA schema_version");
        return;
    } catch (const SQLite::Exception& e) {
        const std::string failure = rollbackFailure(e, pathText_);
        if (failure.empty()) return;
        if (!readOnly_ || e.getExtendedErrorCode() != SQLITE_READONLY_ROLLBACK)
            vel::diag::throwError("coder:Repository:LeftMidWrite", {pathText_, failure});
    }
    try {
        SQLite::Database writer(pathText_, SQLITE_OPEN_READWRITE, options.busyTimeoutMs);
        if (sqlite3_db_readonly(writer.getHandle(), "main") == 1)
            vel::diag::throwError("coder:Repository:LeftMidWrite",
                                  {pathText_, "this process may not write the file"});
        writer.execAndGet("PRAGMA schema_version");
    } catch (const SQLite::Exception& e) {
        // The journal goes last: a failure leaves it, and the file, to be
        // rolled back again.
        const std::string failure = rollbackFailure(e, pathText_);
        vel::diag::throwError("coder:Repository:LeftMidWrite",
                              {pathText_, failure.empty() ? describe(e) : failure});
    }
    vel::diag::warn("coder:Repository:RolledBack", {pathText_});
}

void Store::validateOrCreate(const RepositoryOptions& options) {
    // Ends the read transaction below however this returns.
    struct EndRead {
        Store& store;
        ~EndRead() { store.rollback(); }
    } endRead{*this};
    try {
        if (options.maxPageCount != 0)
            db_->exec("PRAGMA max_page_count = " + std::to_string(options.maxPageCount));
        // The reads see one state of the file: another connection may be
        // creating the schema meanwhile, and a header read before its commit
        // with a table count read after it would look like another
        // application's file.
        db_->exec("BEGIN");
        const int applicationId = db_->execAndGet("PRAGMA application_id").getInt();
        const int version = db_->execAndGet("PRAGMA user_version").getInt();
        // A store cut short still has a valid header; its page count tells,
        // before a read of the missing pages fails less clearly.
        const std::int64_t pages = db_->execAndGet("PRAGMA page_count").getInt64();
        const std::int64_t pageSize = db_->execAndGet("PRAGMA page_size").getInt64();
        std::error_code ec;
        const auto size = std::filesystem::file_size(std::filesystem::u8path(pathText_), ec);
        if (!ec && static_cast<std::int64_t>(size) < pages * pageSize)
            vel::diag::throwError(
                "coder:Repository:Corrupt",
                {pathText_, "the file is " + std::to_string(size) + " bytes long, but holds " +
                                std::to_string(pages) + " pages of " + std::to_string(pageSize) + " bytes"});
        const int objects = db_->execAndGet("SELECT count(*) FROM sqlite_schema").getInt();
        if (applicationId == 0 && version == 0 && objects == 0) {
            if (readOnly_) vel::diag::throwError("coder:Repository:NotAStore", {pathText_});
            rollback();
            createSchema();
            return;
        }
        if (applicationId != Repository::kApplicationId)
            vel::diag::throwError("coder:Repository:NotAStore", {pathText_});
        if (version > Repository::kFormatVersion)
            vel::diag::throwError(
                "coder:Repository:NewerFormat",
                {pathText_, std::to_string(version), std::to_string(Repository::kFormatVersion)});
        if (version < 1) vel::diag::throwError("coder:Repository:Corrupt", {pathText_, "no format version"});

        SQLite::Statement exists(*db_, "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?");
        auto requireTable = [&](const std::string& table) {
            exists.bind(1, table);
            const bool found = exists.executeStep();
            exists.reset();
            if (!found)
                vel::diag::throwError("coder:Repository:Corrupt",
                                      {pathText_, "table '" + table + "' is missing"});
        };
        for (const RecordKind* kind : descriptor::recordKinds()) {
            requireTable(kind->name);
            for (const auto& sequence : kind->sequences) requireTable(sequenceTable(*kind, sequence));
        }
        if (version >= 2) requireTable("UnfinishedRun");
    } catch (const SQLite::Exception& e) {
        const int code = e.getErrorCode() & 0xff;
        if (code == SQLITE_NOTADB) vel::diag::throwError("coder:Repository:NotAStore", {pathText_});
        raise(e);
    }
}

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

Store::KindStatements& Store::statementsFor(const RecordKind& kind) {
    auto found = statements_.find(&kind);
    if (found != statements_.end()) return *found->second;
    auto statements = std::make_unique<KindStatements>();
    std::string columns;
    std::string parameters;
    for (std::size_t i = 0; i < kind.fields.size(); ++i) {
        columns += (i ? ", " : "") + quoted(kind.fields[i].name);
        parameters += i ? ", ?" : "?";
    }
    const std::string table = quoted(kind.name);
    statements->insert = std::make_unique<SQLite::Statement>(
        *db_, kind.fields.empty()
                  ? "INSERT INTO " + table + " DEFAULT VALUES"
                  : "INSERT INTO " + table + " (" + columns + ") VALUES (" + parameters + ")");
    statements->select = std::make_unique<SQLite::Statement>(
        *db_, "SELECT id" + (columns.empty() ? "" : ", " + columns) + " FROM " + table + " WHERE id = ?");
    statements->updateReference.resize(kind.fields.size());
    statements->sequences.resize(kind.sequences.size());
    return *statements_.emplace(&kind, std::move(statements)).first->second;
}

Store::SequenceStatements& Store::sequenceStatementsFor(const RecordKind& kind, std::size_t sequence) {
    SequenceStatements& statements = statementsFor(kind).sequences.at(sequence);
    if (!statements.insert) {
        const SequenceInfo& info = kind.sequences[sequence];
        const std::string table = quoted(sequenceTable(kind, info));
        const std::string column = info.element ? "element" : "value";
        statements.insert = std::make_unique<SQLite::Statement>(
            *db_, "INSERT INTO " + table + " (owner, position, " + column + ") VALUES (?, ?, ?)");
        statements.count = std::make_unique<SQLite::Statement>(
            *db_, "SELECT count(*), coalesce(max(position) + 1, 0) FROM " + table + " WHERE owner = ?");
        statements.at = std::make_unique<SQLite::Statement>(
            *db_, "SELECT " + column + " FROM " + table + " WHERE owner = ? AND position = ?");
        statements.maxOwner =
            std::make_unique<SQLite::Statement>(*db_, "SELECT coalesce(max(owner), 0) FROM " + table);
    }
    return statements;
}

std::int64_t Store::insert(const RecordKind& kind, const std::vector<StoredValue>& values) {
    requireTransaction();
    try {
        SQLite::Statement& statement = *statementsFor(kind).insert;
        ResetGuard guard{statement};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const int parameter = static_cast<int>(i + 1);
            const StoredValue& value = values[i];
            if (auto* n = std::get_if<std::int64_t>(&value))
                statement.bind(parameter, static_cast<int64_t>(*n));
            else if (auto* r = std::get_if<double>(&value))
                statement.bind(parameter, *r);
            else if (auto* t = std::get_if<std::string>(&value))
                statement.bindNoCopy(parameter, *t);
            else
                statement.bind(parameter);
        }
        statement.exec();
        const std::int64_t id = db_->getLastInsertRowid();
        if (openSavepoints_ > 0) {
            notes_.push_back({Note::What::Created, &kind, 0, id, 0});
            firstCreated_.try_emplace(&kind, id);
        }
        return id;
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

FieldValue Store::readColumn(SQLite::Statement& statement, int column, const RecordKind& kind,
                             const FieldInfo& field) {
    SQLite::Column value = statement.getColumn(column);
    auto wrongType = [&]() {
        vel::diag::throwError("coder:descriptor:WrongType", {pathText_, kind.name, field.name});
    };
    if (value.isNull()) {
        if (!field.optional) wrongType();
        return {};
    }
    switch (field.type) {
        case FieldType::Boolean: {
            if (!value.isInteger()) wrongType();
            const auto n = value.getInt64();
            if (n != 0 && n != 1) wrongType();
            return n == 1;
        }
        case FieldType::Integer: {
            if (!value.isInteger()) wrongType();
            const auto n = value.getInt64();
            if (n < field.min || n > field.max) wrongType();
            return std::int64_t{n};
        }
        case FieldType::Real:
            if (!value.isFloat() && !value.isInteger()) wrongType();
            return value.getDouble();
        case FieldType::Text:
            if (!value.isText()) wrongType();
            return vel::i18n::toUString(
                std::string_view(value.getText(), static_cast<std::size_t>(value.getBytes())));
        case FieldType::Reference: {
            if (!value.isInteger()) wrongType();
            return descriptor::Object(shared_from_this(), &field.target(), value.getInt64());
        }
    }
    return {};
}

std::vector<FieldValue> Store::readRow(const RecordKind& kind, std::int64_t id) {
    requireOpen();
    try {
        SQLite::Statement& statement = *statementsFor(kind).select;
        ResetGuard guard{statement};
        statement.bind(1, static_cast<int64_t>(id));
        if (!statement.executeStep())
            vel::diag::throwError("coder:descriptor:MissingRecord",
                                  {pathText_, kind.name, std::to_string(id)});
        std::vector<FieldValue> row;
        row.reserve(kind.fields.size());
        for (std::size_t i = 0; i < kind.fields.size(); ++i)
            row.push_back(readColumn(statement, static_cast<int>(i + 1), kind, kind.fields[i]));
        return row;
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

void Store::setReference(const RecordKind& kind, std::size_t field, std::int64_t id, std::int64_t target) {
    requireTransaction();
    // A reference changed on a record older than the open savepoints cannot
    // be taken back alone.
    if (openSavepoints_ > 0) {
        const auto first = firstCreated_.find(&kind);
        if (first == firstCreated_.end() || id < first->second) undoByRollback_ = true;
    }
    try {
        auto& slot = statementsFor(kind).updateReference.at(field);
        if (!slot)
            slot = std::make_unique<SQLite::Statement>(*db_, "UPDATE " + quoted(kind.name) + " SET " +
                                                                 quoted(kind.fields[field].name) +
                                                                 " = ? WHERE id = ?");
        ResetGuard guard{*slot};
        slot->bind(1, static_cast<int64_t>(target));
        slot->bind(2, static_cast<int64_t>(id));
        if (slot->exec() == 0)
            vel::diag::throwError("coder:descriptor:MissingRecord",
                                  {pathText_, kind.name, std::to_string(id)});
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

void Store::clear() {
    requireTransaction();
    if (openSavepoints_ > 0) undoByRollback_ = true;
    try {
        for (const RecordKind* kind : descriptor::recordKinds()) {
            for (const auto& sequence : kind->sequences)
                db_->exec("DELETE FROM " + quoted(sequenceTable(*kind, sequence)));
            db_->exec("DELETE FROM " + quoted(kind->name));
        }
        db_->exec("DELETE FROM \"UnfinishedRun\"");
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
    forgetPositions();
}

std::string Store::unfinishedRun() {
    requireOpen();
    try {
        if (formatVersion() < 2) return {};
        SQLite::Statement statement(*db_, "SELECT token FROM \"UnfinishedRun\"");
        return statement.executeStep() ? statement.getColumn(0).getString() : std::string();
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

void Store::setUnfinishedRun(const std::string& token) {
    requireTransaction();
    if (openSavepoints_ > 0) undoByRollback_ = true;
    try {
        // Zeroed as it is deleted, so that the token leaves no trace in the
        // file: the same model written the same way gives the same bytes.
        db_->exec("PRAGMA secure_delete = ON");
        db_->exec("DELETE FROM \"UnfinishedRun\"");
        db_->exec("PRAGMA secure_delete = OFF");
        if (token.empty()) return;
        SQLite::Statement insert(*db_, "INSERT INTO \"UnfinishedRun\" (id, token) VALUES (1, ?)");
        insert.bind(1, token);
        insert.exec();
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

std::size_t Store::sequenceSize(const RecordKind& kind, std::size_t sequence, std::int64_t owner) {
    requireOpen();
    try {
        SQLite::Statement& statement = *sequenceStatementsFor(kind, sequence).count;
        ResetGuard guard{statement};
        statement.bind(1, static_cast<int64_t>(owner));
        statement.executeStep();
        const auto count = statement.getColumn(0).getInt64();
        // Positions are 0..count-1; anything else is a damaged store.
        if (statement.getColumn(1).getInt64() != count)
            vel::diag::throwError(
                "coder:descriptor:BrokenSequence",
                {pathText_, kind.name, kind.sequences[sequence].name, std::to_string(owner)});
        return static_cast<std::size_t>(count);
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

FieldValue Store::sequenceElement(const RecordKind& kind, std::size_t sequence, std::int64_t owner,
                                  std::size_t position) {
    requireOpen();
    const SequenceInfo& info = kind.sequences[sequence];
    try {
        SQLite::Statement& statement = *sequenceStatementsFor(kind, sequence).at;
        ResetGuard guard{statement};
        statement.bind(1, static_cast<int64_t>(owner));
        statement.bind(2, static_cast<int64_t>(position));
        if (!statement.executeStep()) {
            const std::size_t size = sequenceSize(kind, sequence, owner);
            vel::diag::throwError("coder:descriptor:IndexOutOfRange",
                                  {std::to_string(position), std::to_string(size), info.name});
        }
        FieldInfo element{info.name, info.element ? FieldType::Reference : info.valueType,
                          false,     info.element,
                          INT64_MIN, INT64_MAX};
        return readColumn(statement, 0, kind, element);
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

void Store::append(const RecordKind& kind, std::size_t sequence, std::int64_t owner,
                   const FieldValue& value) {
    requireTransaction();
    try {
        SequenceStatements& statements = sequenceStatementsFor(kind, sequence);
        if (statements.highestOwner < 0) {
            ResetGuard guard{*statements.maxOwner};
            statements.maxOwner->executeStep();
            statements.highestOwner = statements.maxOwner->getColumn(0).getInt64();
        }
        if (statements.nextPosition < 0 || statements.cachedOwner != owner) {
            statements.nextPosition = owner > statements.highestOwner
                                          ? 0
                                          : static_cast<std::int64_t>(sequenceSize(kind, sequence, owner));
            statements.cachedOwner = owner;
        }
        SQLite::Statement& statement = *statements.insert;
        ResetGuard guard{statement};
        statement.bind(1, static_cast<int64_t>(owner));
        statement.bind(2, static_cast<int64_t>(statements.nextPosition));
        if (auto* n = std::get_if<std::int64_t>(&value))
            statement.bind(3, static_cast<int64_t>(*n));
        else if (auto* t = std::get_if<descriptor::ustring>(&value))
            statement.bind(3, vel::i18n::toUtf8(*t));
        else if (auto* o = std::get_if<descriptor::Object>(&value))
            statement.bind(3, static_cast<int64_t>(o->getId()));
        else
            assert(false && "a sequence element is an integer, a text or a record");
        statement.exec();
        if (openSavepoints_ > 0)
            notes_.push_back({Note::What::Appended, &kind, sequence, owner, statements.nextPosition});
        ++statements.nextPosition;
        if (owner > statements.highestOwner) statements.highestOwner = owner;
    } catch (const SQLite::Exception& e) {
        forgetPositions();
        raise(e);
    }
}

void Store::newTransactionState() {
    ++transactionSerial_;
    openSavepoints_ = 0;
    notes_.clear();
    firstCreated_.clear();
    undoByRollback_ = false;
}

std::size_t Store::openSavepoint() {
    requireTransaction();
    ++openSavepoints_;
    return notes_.size();
}

void Store::releaseSavepoint(std::uint64_t transaction) noexcept {
    if (transaction != transactionSerial_ || openSavepoints_ == 0) return;
    // The outermost savepoint keeps all: nothing is left to undo.
    if (--openSavepoints_ == 0) {
        notes_.clear();
        firstCreated_.clear();
    }
}

void Store::undoSavepoint(std::uint64_t transaction, std::size_t mark) noexcept {
    if (transaction != transactionSerial_ || openSavepoints_ == 0 || !inTransaction()) return;
    --openSavepoints_;
    if (undoByRollback_) {
        rollback();
        return;
    }
    try {
        for (std::size_t i = notes_.size(); i-- > mark;) undo(notes_[i]);
    } catch (const std::exception&) {
        rollback();
        return;
    }
    notes_.resize(mark);
    forgetPositions();
    firstCreated_.clear();
    for (const Note& note : notes_)
        if (note.what == Note::What::Created) firstCreated_.try_emplace(note.kind, note.id);
}

// Rare (a failure under a savepoint), so the statements are not kept.
void Store::undo(const Note& note) {
    const RecordKind& kind = *note.kind;
    SQLite::Statement remove(*db_, note.what == Note::What::Created
                                       ? "DELETE FROM " + quoted(kind.name) + " WHERE id = ?"
                                       : "DELETE FROM " +
                                             quoted(sequenceTable(kind, kind.sequences[note.sequence])) +
                                             " WHERE owner = ? AND position = ?");
    remove.bind(1, static_cast<int64_t>(note.id));
    if (note.what == Note::What::Appended) remove.bind(2, static_cast<int64_t>(note.position));
    remove.exec();
}

std::int64_t Store::firstModelId() {
    requireOpen();
    try {
        SQLite::Statement statement(*db_, "SELECT id FROM \"Model\" ORDER BY id LIMIT 1");
        return statement.executeStep() ? statement.getColumn(0).getInt64() : 0;
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

int Store::formatVersion() {
    requireOpen();
    try {
        return db_->execAndGet("PRAGMA user_version").getInt();
    } catch (const SQLite::Exception& e) {
        raise(e);
    }
}

std::vector<std::string> Store::checkIntegrity() {
    requireOpen();
    std::vector<std::string> problems;
    const bool ownView = beginRead();
    struct EndView {
        Store& store;
        bool active;
        ~EndView() {
            if (active) store.rollback();
        }
    } endView{*this, ownView};
    try {
        SQLite::Statement integrity(*db_, "PRAGMA integrity_check");
        while (integrity.executeStep()) {
            std::string line = integrity.getColumn(0).getString();
            if (line != "ok") problems.push_back(line);
        }
        // Record tables; the sequence tables have no row ids and are checked
        // below by owner and position.
        SQLite::Statement references(*db_, "PRAGMA foreign_key_check");
        while (references.executeStep()) {
            if (references.getColumn(1).isNull()) continue;
            problems.push_back("table '" + references.getColumn(0).getString() + "' row " +
                               references.getColumn(1).getString() + " refers to a missing row of '" +
                               references.getColumn(2).getString() + "'");
        }
        for (const RecordKind* kind : descriptor::recordKinds()) {
            for (const auto& sequence : kind->sequences) {
                const std::string table = sequenceTable(*kind, sequence);
                auto report = [&](const std::string& sql, const std::string& what) {
                    SQLite::Statement rows(*db_, sql);
                    while (rows.executeStep())
                        problems.push_back(
                            "table '" + table + "': owner " + rows.getColumn(0).getString() + " " + what +
                            (rows.getColumnCount() > 1 ? " " + rows.getColumn(1).getString() : ""));
                };
                report("SELECT owner FROM " + quoted(table) +
                           " GROUP BY owner HAVING max(position) + 1 != count(*) OR min(position) != 0",
                       "has positions other than 0, 1, 2, ...");
                report("SELECT s.owner, s.position FROM " + quoted(table) + " AS s LEFT JOIN " +
                           quoted(kind->name) + " AS o ON o.id = s.owner WHERE o.id IS NULL",
                       "is not a row of '" + std::string(kind->name) + "', at position");
                if (sequence.element)
                    report("SELECT s.owner, s.position FROM " + quoted(table) + " AS s LEFT JOIN " +
                               quoted(sequence.element().name) +
                               " AS e ON e.id = s.element WHERE e.id IS NULL",
                           "refers to a missing row of '" + std::string(sequence.element().name) +
                               "' at position");
            }
        }
    } catch (const SQLite::Exception& e) {
        problems.push_back(describe(e));
    }
    return problems;
}

} // namespace detail
} // namespace coder
