#pragma once

// What a code descriptor store holds, read and changed with SQLite itself,
// past the store's own classes.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include <sqlite3.h>

namespace testing_support {

// Runs SQL on a file directly, past the store; creates a missing file.
inline void execSql(const std::filesystem::path& path, const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(path.c_str(), &db));
    char* error = nullptr;
    const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error);
    const std::string message = error ? error : "";
    sqlite3_free(error);
    sqlite3_close(db);
    ASSERT_EQ(SQLITE_OK, rc) << message;
}

// The rows of every table of the store, "table rows" a line. A pass writes
// all its rows or none, so this tells a complete pass from a partial one.
inline std::string rowCounts(const std::filesystem::path& store) {
    sqlite3* db = nullptr;
    std::string out;
    if (sqlite3_open_v2(store.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt* tables = nullptr;
        sqlite3_prepare_v2(db, "SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name", -1,
                           &tables, nullptr);
        while (sqlite3_step(tables) == SQLITE_ROW) {
            const std::string table = reinterpret_cast<const char*>(sqlite3_column_text(tables, 0));
            sqlite3_stmt* count = nullptr;
            sqlite3_prepare_v2(db, ("SELECT count(*) FROM \"" + table + "\"").c_str(), -1, &count, nullptr);
            if (sqlite3_step(count) == SQLITE_ROW)
                out += table + " " + std::to_string(sqlite3_column_int64(count, 0)) + "\n";
            sqlite3_finalize(count);
        }
        sqlite3_finalize(tables);
    }
    const std::string error = sqlite3_errmsg(db);
    sqlite3_close(db);
    return out.empty() ? "(unreadable: " + error + ")" : out;
}

} // namespace testing_support
