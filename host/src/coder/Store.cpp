#include "Store.hpp"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <cassert>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <sqlite3.h>

#include "StoreSql.hpp"
#include "StoreStatements.hpp"
#include "coder/Messages.hpp"
#include "coder/Repository.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder {
namespace detail {

using descriptor::FieldInfo;
using descriptor::FieldType;
using descriptor::SequenceInfo;

namespace {

// The system error behind the last I/O failure on db; SQLite's text for it
// ("disk I/O error") does not say which. A failure at commit is recorded
// only by the database file, a failure of a statement by the connection.
int lastSystemError(sqlite3* db) {
    int error = 0;
    if (sqlite3_file_control(db, "main", SQLITE_FCNTL_LAST_ERRNO, &error) != SQLITE_OK || error == 0)
        error = sqlite3_system_errno(db);
    return error;
}

// Resets a statement when leaving scope, also when a read throws, so that
// it holds no read lock and can be reused. Bindings stay: every use binds
// every parameter again.
struct ResetGuard {
    SQLite::Statement& statement;
    ~ResetGuard() { statement.tryReset(); }
};

} // namespace

std::string describe(const SQLite::Exception& error) {
    std::string text = error.what();
    return text.empty() ? "SQLite error " + std::to_string(error.getErrorCode()) : text;
}

Store::Store(const std::filesystem::path& path, const RepositoryOptions& options)
    : pathText_(path.u8string()), readOnly_(options.access == RepositoryOptions::Access::ReadOnly) {
    // SQLite takes the path as a C string: one holding a NUL would open the
    // file named by the text before it, so such a path is refused, with the
    // NUL shown in the message.
    if (pathText_.find('\0') != std::string::npos) {
        std::string shown;
        for (char c : pathText_) shown += c ? std::string(1, c) : "\\0";
        vel::diag::throwError(coder::messages::Repository::CannotOpen,
                              {shown, "the path holds a NUL character"});
    }
    int flags =
        (readOnly_ ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE) | SQLITE_OPEN_NOMUTEX;
    try {
        db_ = std::make_unique<SQLite::Database>(pathText_, flags, options.busyTimeoutMs);
    } catch (const SQLite::Exception& e) {
        vel::diag::throwError(coder::messages::Repository::CannotOpen, {pathText_, describe(e)});
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
    if (!db_) vel::diag::throwError(coder::messages::descriptor::Closed, {pathText_});
}

void Store::requireTransaction() const {
    requireOpen();
    if (!inTransaction()) vel::diag::throwError(coder::messages::Repository::NoTransaction, {pathText_});
}

bool Store::inTransaction() const { return db_ && sqlite3_get_autocommit(db_->getHandle()) == 0; }

void Store::raise(const SQLite::Exception& error) const {
    const int code = error.getErrorCode() & 0xff;
    const char* key = coder::messages::Repository::Failed;
    std::string reason = describe(error);
    const int systemError = db_ ? lastSystemError(db_->getHandle()) : 0;
#if !defined(_WIN32)
    if (systemError != 0 && (code == SQLITE_IOERR || code == SQLITE_CANTOPEN))
        reason += std::string(" (") + std::strerror(systemError) + ")";
#endif
    switch (code) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            key = coder::messages::Repository::Busy;
            break;
        case SQLITE_FULL:
            key = coder::messages::Repository::Full;
            break;
        case SQLITE_IOERR:
            // The disk is full, or the file reached the process's size limit.
            if (systemError == ENOSPC || systemError == EFBIG) key = coder::messages::Repository::Full;
            break;
        case SQLITE_READONLY:
            key = coder::messages::Repository::ReadOnly;
            if (error.getExtendedErrorCode() == SQLITE_READONLY_DIRECTORY)
                reason += " (the directory does not let the journal be created)";
            // A writer stopped after this connection was opened.
            if (error.getExtendedErrorCode() == SQLITE_READONLY_ROLLBACK ||
                error.getExtendedErrorCode() == SQLITE_READONLY_RECOVERY) {
                key = coder::messages::Repository::LeftMidWrite;
                reason =
                    readOnly_ ? "the repository is open for reading only" : rollbackFailure(error, pathText_);
            }
            break;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            key = coder::messages::Repository::Corrupt;
            break;
        case SQLITE_CANTOPEN:
            key = coder::messages::Repository::CannotOpen;
            break;
        default:
            break;
    }
    vel::diag::throwError(key, {pathText_, reason});
}

void Store::begin() {
    requireOpen();
    if (inTransaction()) vel::diag::throwError(coder::messages::Repository::TransactionActive, {pathText_});
    if (readOnly_)
        vel::diag::throwError(coder::messages::Repository::ReadOnly, {pathText_, "opened for reading only"});
    if (writeProtected_)
        vel::diag::throwError(coder::messages::Repository::ReadOnly,
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
        vel::diag::throwError(coder::messages::descriptor::WrongType, {pathText_, kind.name, field.name});
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
            vel::diag::throwError(coder::messages::descriptor::MissingRecord,
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
            vel::diag::throwError(coder::messages::descriptor::MissingRecord,
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
                coder::messages::descriptor::BrokenSequence,
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
            vel::diag::throwError(coder::messages::descriptor::IndexOutOfRange,
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

} // namespace detail
} // namespace coder
