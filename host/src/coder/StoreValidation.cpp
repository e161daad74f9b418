// Opening a store: rolling back what a writer that stopped left, and
// checking that the file is a store of a format this reader knows (or
// making an empty file one).

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include <sqlite3.h>

#include "Store.hpp"
#include "StoreSql.hpp"
#include "coder/Messages.hpp"
#include "coder/Repository.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::detail {

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
            vel::diag::throwError(coder::messages::Repository::LeftMidWrite, {pathText_, failure});
    }
    try {
        SQLite::Database writer(pathText_, SQLITE_OPEN_READWRITE, options.busyTimeoutMs);
        if (sqlite3_db_readonly(writer.getHandle(), "main") == 1)
            vel::diag::throwError(coder::messages::Repository::LeftMidWrite,
                                  {pathText_, "this process may not write the file"});
        writer.execAndGet("PRAGMA schema_version");
    } catch (const SQLite::Exception& e) {
        // The journal goes last: a failure leaves it, and the file, to be
        // rolled back again.
        const std::string failure = rollbackFailure(e, pathText_);
        vel::diag::throwError(coder::messages::Repository::LeftMidWrite,
                              {pathText_, failure.empty() ? describe(e) : failure});
    }
    vel::diag::warn(coder::messages::Repository::RolledBack, {pathText_});
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
                coder::messages::Repository::Corrupt,
                {pathText_, "the file is " + std::to_string(size) + " bytes long, but holds " +
                                std::to_string(pages) + " pages of " + std::to_string(pageSize) + " bytes"});
        const int objects = db_->execAndGet("SELECT count(*) FROM sqlite_schema").getInt();
        if (applicationId == 0 && version == 0 && objects == 0) {
            if (readOnly_) vel::diag::throwError(coder::messages::Repository::NotAStore, {pathText_});
            rollback();
            createSchema();
            return;
        }
        if (applicationId != Repository::kApplicationId)
            vel::diag::throwError(coder::messages::Repository::NotAStore, {pathText_});
        if (version > Repository::kFormatVersion)
            vel::diag::throwError(
                coder::messages::Repository::NewerFormat,
                {pathText_, std::to_string(version), std::to_string(Repository::kFormatVersion)});
        if (version < 1)
            vel::diag::throwError(coder::messages::Repository::Corrupt, {pathText_, "no format version"});

        SQLite::Statement exists(*db_, "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?");
        auto requireTable = [&](const std::string& table) {
            exists.bind(1, table);
            const bool found = exists.executeStep();
            exists.reset();
            if (!found)
                vel::diag::throwError(coder::messages::Repository::Corrupt,
                                      {pathText_, "table '" + table + "' is missing"});
        };
        for (const RecordKind* kind : descriptor::recordKinds()) {
            requireTable(kind->name);
            for (const auto& sequence : kind->sequences) requireTable(sequenceTable(*kind, sequence));
        }
        if (version >= 2) requireTable("UnfinishedRun");
    } catch (const SQLite::Exception& e) {
        const int code = e.getErrorCode() & 0xff;
        if (code == SQLITE_NOTADB) vel::diag::throwError(coder::messages::Repository::NotAStore, {pathText_});
        raise(e);
    }
}

} // namespace coder::detail
