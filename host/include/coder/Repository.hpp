#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "coder/RepositoryOptions.hpp"
// Every writer of a repository needs a transaction.
#include "coder/Transaction.hpp"
#include "vel/HostExport.hpp"

namespace coder {

namespace detail {
class Store;
}

namespace descriptor {
class Creator;
class RepositoryHelper;
} // namespace descriptor

// A code descriptor store: one SQLite file holding the description of one
// model (see coder/descriptor/*). The file format is described at the top
// of host/src/coder/StoreSchema.cpp.
//
// Opening validates the file before anything is written to it: a file that
// is not a store (not SQLite, another application's database, a truncated
// store) or a store of a newer format raises a diagnostic and is left
// untouched. A new or empty file becomes an empty store.
//
// Records are written only inside a transaction. Work that is not committed
// is never visible to another reader; destroying the repository rolls back
// an open transaction. A process that dies during a transaction leaves the
// file as it was at the last commit, with the unfinished transaction in a
// journal beside it ("<file>-journal") that the next open rolls back. A
// repository opened for reading does that too, when the process may write
// the file and its directory, and reports it with the warning
// "coder:Repository:RolledBack" (vel::diag::warn); otherwise it raises
// "coder:Repository:LeftMidWrite", which names the command that recovers
// the file.
//
// A repository, and every descriptor object taken from it, is used by one
// thread at a time. Two repositories on one file (two threads or two
// processes) take turns: beginTransaction waits for the other's write lock
// for at most busyTimeoutMs.
//
// Diagnostics, each "coder:Repository:<key>" with the path first among its
// arguments: CannotOpen (also for a path holding a NUL), NotAStore,
// NewerFormat, Corrupt, ReadOnly, LeftMidWrite, Busy, Full (also a full
// disk or the process's file size limit), Failed (any other SQLite error),
// TransactionActive, NoTransaction. Where an I/O failure lies behind one,
// its reason names the system error.
class VELHOST_API Repository {
public:
    // Identifies the file as a store ("PRAGMA application_id": "VCGD").
    static constexpr std::int32_t kApplicationId = 0x56434744;
    // The format this build writes ("PRAGMA user_version"). It reads this
    // one and format 1, which the first transaction written to it upgrades.
    static constexpr int kFormatVersion = 2;

    explicit Repository(const std::filesystem::path& path, RepositoryOptions options = {});
    // Rolls back an open transaction and closes the file. Descriptor objects
    // still held raise "coder:descriptor:Closed" when used afterwards.
    ~Repository();
    Repository(const Repository&) = delete;
    Repository& operator=(const Repository&) = delete;

    // REQUIRES: no transaction is open. Takes the write lock at once. Raises
    // "coder:Repository:ReadOnly" on a repository opened for reading only
    // and on a file the process may not write.
    void beginTransaction();
    // REQUIRES: a transaction is open.
    void commitTransaction();
    // Discards the open transaction's work; does nothing when none is open.
    void rollbackTransaction() noexcept;
    bool inTransaction() const;

    const std::filesystem::path& getPath() const { return path_; }
    bool isReadOnly() const;
    // The format version stored in the file.
    int getFormatVersion() const;

    // The token of the run that stored the model and means to add to it in
    // a later transaction (setUnfinishedRun): a writer that finds another
    // token, or none, knows that the model is no longer the one it stored.
    // Empty when no run is unfinished, also in a file of format 1.
    std::string getUnfinishedRun() const;
    // REQUIRES: a transaction is open. Records token as the unfinished run;
    // an empty token clears it, leaving no trace of the old one in the file.
    // Storing a new model (ModelCreator::createModel) clears it too. Tokens
    // of one length keep the file's bytes independent of their values.
    void setUnfinishedRun(const std::string& token);

    // SQLite's integrity check and a check of every reference between
    // records. Empty when the store is sound; otherwise one readable line
    // per problem found.
    std::vector<std::string> checkIntegrity() const;

private:
    // The connection, shared with the descriptor objects taken from it.
    friend class ReadTransaction;
    friend class Savepoint;
    friend class descriptor::Creator;
    friend class descriptor::RepositoryHelper;
    const std::shared_ptr<detail::Store>& store() const { return store_; }

    std::filesystem::path path_;
    std::shared_ptr<detail::Store> store_;
};

} // namespace coder
