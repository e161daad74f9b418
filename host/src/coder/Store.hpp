#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "coder/RepositoryOptions.hpp"
#include "coder/descriptor/Object.hpp"
#include "coder/descriptor/RecordKind.hpp"

namespace SQLite {
class Database;
class Exception;
class Statement;
} // namespace SQLite

namespace coder::detail {

using descriptor::FieldValue;
using descriptor::RecordKind;

// A field as a creator holds it: absent, an integer (booleans as 0 or 1), a
// real, or UTF-8 text.
using StoredValue = std::variant<std::monostate, std::int64_t, double, std::string>;

// The open SQLite connection of one repository with its prepared
// statements, shared by the repository and every descriptor object taken
// from it. close() ends it; later use raises "coder:descriptor:Closed".
class Store : public std::enable_shared_from_this<Store> {
public:
    Store(const std::filesystem::path& path, const RepositoryOptions& options);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    void close() noexcept;
    // Raises "coder:descriptor:Closed" once closed.
    void requireOpen() const;
    // Raises "coder:Repository:NoTransaction" outside a transaction.
    void requireTransaction() const;
    bool inTransaction() const;
    bool isReadOnly() const { return readOnly_; }
    const std::string& pathText() const { return pathText_; }

    void begin();
    // Opens a read transaction unless one is open; true when it did.
    bool beginRead();
    void commit();
    void rollback() noexcept;

    // Turns an SQLite failure into the matching "coder:Repository:*"
    // diagnostic.
    [[noreturn]] void raise(const SQLite::Exception& error) const;

    // A descriptor object for a record of this store.
    descriptor::Object object(const RecordKind& kind, std::int64_t id) {
        return descriptor::Object(shared_from_this(), &kind, id);
    }

    // Record rows.
    std::int64_t insert(const RecordKind& kind, const std::vector<StoredValue>& values);
    std::vector<FieldValue> readRow(const RecordKind& kind, std::int64_t id);
    void setReference(const RecordKind& kind, std::size_t field, std::int64_t id, std::int64_t target);
    // Deletes every record: a store holds one model description.
    void clear();

    // Sequence rows.
    std::size_t sequenceSize(const RecordKind& kind, std::size_t sequence, std::int64_t owner);
    FieldValue sequenceElement(const RecordKind& kind, std::size_t sequence, std::int64_t owner,
                               std::size_t position);
    void append(const RecordKind& kind, std::size_t sequence, std::int64_t owner, const FieldValue& value);

    // The id of the first model record, or 0 when the store holds none.
    std::int64_t firstModelId();
    int formatVersion();
    // See Repository::getUnfinishedRun and setUnfinishedRun.
    std::string unfinishedRun();
    void setUnfinishedRun(const std::string& token);
    std::vector<std::string> checkIntegrity();

    // Savepoints (coder::Savepoint). While one is open, the store notes the
    // records it creates and the elements it appends, so that undoSavepoint
    // can take them back. Each transaction has a serial number of its own: a
    // savepoint of a transaction that has ended does nothing.
    std::uint64_t transactionSerial() const { return transactionSerial_; }
    // Raises "coder:Repository:NoTransaction" outside a transaction. Returns
    // the mark that undoSavepoint takes.
    std::size_t openSavepoint();
    void releaseSavepoint(std::uint64_t transaction) noexcept;
    // Undoes what was noted since mark, or, where that cannot be done record
    // by record, rolls back the whole transaction.
    void undoSavepoint(std::uint64_t transaction, std::size_t mark) noexcept;

private:
    struct SequenceStatements;
    struct KindStatements;
    // One write noted for the open savepoints.
    struct Note {
        enum class What { Created, Appended } what;
        const RecordKind* kind;
        std::size_t sequence;  // Appended
        std::int64_t id;       // the record, or the sequence's owner
        std::int64_t position; // Appended
    };

    void firstRead(const RepositoryOptions& options);
    void validateOrCreate(const RepositoryOptions& options);
    void createSchema();
    KindStatements& statementsFor(const RecordKind& kind);
    SequenceStatements& sequenceStatementsFor(const RecordKind& kind, std::size_t sequence);
    FieldValue readColumn(SQLite::Statement& statement, int column, const RecordKind& kind,
                          const descriptor::FieldInfo& field);
    void forgetPositions();
    // A transaction began or ended: its notes and savepoints are gone.
    void newTransactionState();
    void undo(const Note& note);

    std::string pathText_;
    bool readOnly_;
    // Opened for writing, but the file could be opened for reading only.
    bool writeProtected_ = false;
    std::unique_ptr<SQLite::Database> db_;
    std::unordered_map<const RecordKind*, std::unique_ptr<KindStatements>> statements_;

    std::uint64_t transactionSerial_ = 0;
    std::size_t openSavepoints_ = 0;
    std::vector<Note> notes_;
    // The first record of each kind created under the open savepoints: ids
    // grow, so the records from it on are theirs.
    std::unordered_map<const RecordKind*, std::int64_t> firstCreated_;
    // Set when the open savepoints saw a write they cannot undo alone: a new
    // model, the unfinished run, a reference changed on an older record.
    bool undoByRollback_ = false;
};

} // namespace coder::detail
