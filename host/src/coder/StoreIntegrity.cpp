// Store::checkIntegrity: SQLite's own check, the declared foreign keys, and
// what SQLite cannot check of the sequence tables.

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <string>
#include <vector>

#include "Store.hpp"
#include "StoreSql.hpp"

namespace coder::detail {

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

} // namespace coder::detail
