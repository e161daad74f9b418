// The statement cache of Store: each record kind's and each sequence's
// statements are prepared on first use and kept until the store closes.

#include "StoreStatements.hpp"

#include <SQLiteCpp/Database.h>
#include <string>

#include "StoreSql.hpp"

namespace coder::detail {

using descriptor::SequenceInfo;

void Store::forgetPositions() {
    for (auto& [kind, statements] : statements_) {
        for (auto& sequence : statements->sequences) {
            sequence.nextPosition = -1;
            sequence.highestOwner = -1;
        }
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

} // namespace coder::detail
