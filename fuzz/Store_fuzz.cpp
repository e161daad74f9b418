// Opens a damaged code descriptor store for reading and dumps it as text and
// as JSON, as the descriptor tool's "check" and "dump" commands do. A valid
// store of a model holding every model class is written once; the input
// picks the damage:
//   0 random bytes as the whole file,
//   1 the store cut short at an offset,
//   2 the store with bytes overwritten at offsets (mostly in the header and
//     the first pages, where the schema lives),
//   3 another SQLite database: tables and columns of any names (the store's
//     own among them) and any application id and format version,
//   4 the store with rows deleted from a table, or a table dropped,
//   5 the store with a column given a value of another type or out of its
//     range (the table first made non-STRICT, or its CHECKs ignored).
// Opening, checking and dumping must each succeed or raise a host diagnostic
// with an identifier; no crash, hang or leak.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <fuzzer/FuzzedDataProvider.h>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include <sqlite3.h>

#include "EveryKindModel.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Dump.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/Features.hpp"

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "store fuzzer: %s\n", what.c_str());
    std::abort();
}

struct Table {
    std::string name;
    std::vector<std::string> columns;
    bool records = false; // a record table (keyed by id), not a sequence table
};

// The per-process directory, the store written once and its tables.
struct Setup {
    fs::path directory;
    fs::path file;
    std::string store;
    std::vector<Table> tables;
};

Setup* setup = nullptr;

void removeDirectory() {
    std::error_code ignored;
    fs::remove_all(setup->directory, ignored);
}

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) fail("cannot write " + path.string());
}

std::string sqlName(const std::string& name) {
    std::string out = "\"";
    for (char c : name) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

class Database {
public:
    explicit Database(const fs::path& path) {
        if (sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
            SQLITE_OK)
            fail(std::string("cannot open the damaged store: ") + sqlite3_errmsg(db_));
        // The file is thrown away after one run: no syncing, no journal file.
        exec("PRAGMA synchronous = OFF");
        exec("PRAGMA journal_mode = MEMORY");
    }
    ~Database() { sqlite3_close(db_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Runs sql; a statement SQLite refuses is a damage that did not happen.
    bool exec(const std::string& sql) {
        return sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }

    sqlite3_stmt* prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) return nullptr;
        return statement;
    }

private:
    sqlite3* db_ = nullptr;
};

void buildStore() {
    setup = new Setup;
    char pattern[] = "/tmp/velcg-store-fuzz-XXXXXX";
    if (!mkdtemp(pattern)) fail("mkdtemp failed");
    setup->directory = pattern;
    std::atexit(removeDirectory);
    {
        // Systems and external inputs are written from level 4 of the switch.
        vel::feature::ScopedValue everything(VELFEAT_VelCGDirectEmitSerialize, 4);
        testing_support::EveryKindModel model;
        model.model.serializeModel(setup->directory.wstring());
    }
    const fs::path written = setup->directory / VelCG::CGModel::kCodeDescriptorFileName;
    setup->store = readFile(written);
    if (setup->store.empty()) fail("the model wrote no store");
    try {
        coder::RepositoryOptions options;
        options.access = coder::RepositoryOptions::Access::ReadOnly;
        coder::Repository repository(written, options);
        if (!repository.checkIntegrity().empty()) fail("the undamaged store is unsound");
        coder::descriptor::dumpText(repository);
    } catch (const vel::diag::Exception& e) {
        fail(std::string("the undamaged store does not dump: ") + e.what());
    }

    sqlite3* db = nullptr;
    if (sqlite3_open_v2(written.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
        fail("cannot read");
    sqlite3_stmt* tables = nullptr;
    sqlite3_prepare_v2(db, "SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name", -1, &tables,
                       nullptr);
    while (sqlite3_step(tables) == SQLITE_ROW) {
        Table table;
        table.name = reinterpret_cast<const char*>(sqlite3_column_text(tables, 0));
        sqlite3_stmt* columns = nullptr;
        sqlite3_prepare_v2(db, ("PRAGMA table_info(" + sqlName(table.name) + ")").c_str(), -1, &columns,
                           nullptr);
        while (sqlite3_step(columns) == SQLITE_ROW) {
            table.columns.push_back(reinterpret_cast<const char*>(sqlite3_column_text(columns, 1)));
            if (table.columns.back() == "id") table.records = true;
        }
        sqlite3_finalize(columns);
        setup->tables.push_back(std::move(table));
    }
    sqlite3_finalize(tables);
    sqlite3_close(db);
    fs::remove(written);
    if (setup->tables.empty()) fail("the store has no tables");
    setup->file = setup->directory / "damaged.strata";
}

// Removes the file and any journal SQLite may have left beside it.
void removeFiles() {
    std::error_code ignored;
    for (const char* suffix : {"", "-journal", "-wal", "-shm"})
        fs::remove(fs::path(setup->file.string() + suffix), ignored);
}

const Table& pickTable(FuzzedDataProvider& in) {
    return setup->tables[in.ConsumeIntegralInRange<std::size_t>(0, setup->tables.size() - 1)];
}

std::string pickName(FuzzedDataProvider& in, const std::vector<std::string>& known) {
    if (known.empty() || in.ConsumeBool()) return in.ConsumeRandomLengthString(12);
    return known[in.ConsumeIntegralInRange<std::size_t>(0, known.size() - 1)];
}

void overwriteBytes(FuzzedDataProvider& in) {
    std::string bytes = setup->store;
    const int count = in.ConsumeIntegralInRange<int>(1, 8);
    for (int i = 0; i < count && in.remaining_bytes() > 0; ++i) {
        // The header and the schema page mostly; anywhere sometimes.
        const std::size_t limit = in.ConsumeBool() ? std::min<std::size_t>(bytes.size(), 8192) : bytes.size();
        const std::size_t at = in.ConsumeIntegralInRange<std::size_t>(0, limit - 1);
        bytes[at] = static_cast<char>(in.ConsumeIntegral<std::uint8_t>());
    }
    writeFile(setup->file, bytes);
}

void otherDatabase(FuzzedDataProvider& in) {
    std::vector<std::string> tableNames;
    for (const Table& t : setup->tables) tableNames.push_back(t.name);
    Database db(setup->file);
    const int tables = in.ConsumeIntegralInRange<int>(0, 4);
    for (int t = 0; t < tables; ++t) {
        const std::string name = pickName(in, tableNames);
        const int columns = in.ConsumeIntegralInRange<int>(1, 4);
        std::string sql = "CREATE TABLE " + sqlName(name) + " (";
        std::vector<std::string> known = {"id", "owner", "position", "value", "element", "Name"};
        for (int c = 0; c < columns; ++c) {
            static const char* const kTypes[] = {"",      " INTEGER", " TEXT",
                                                 " REAL", " BLOB",    " INTEGER PRIMARY KEY"};
            sql += (c ? ", " : "") + sqlName(pickName(in, known)) + in.PickValueInArray(kTypes);
        }
        db.exec(sql + ")");
        if (in.ConsumeBool()) db.exec("INSERT INTO " + sqlName(name) + " DEFAULT VALUES");
    }
    static constexpr std::int32_t kIds[] = {0, coder::Repository::kApplicationId, 1};
    db.exec("PRAGMA application_id = " + std::to_string(in.ConsumeBool()
                                                            ? in.PickValueInArray(kIds)
                                                            : in.ConsumeIntegral<std::int32_t>()));
    db.exec("PRAGMA user_version = " + std::to_string(in.ConsumeIntegralInRange<int>(-1, 3)));
}

// A WHERE clause choosing the table's row at a fuzzed position.
std::string rowFilter(FuzzedDataProvider& in, const Table& table) {
    const std::string name = sqlName(table.name);
    const std::string offset = std::to_string(in.ConsumeIntegralInRange<int>(0, 16));
    if (table.records)
        return " WHERE id = (SELECT id FROM " + name + " ORDER BY id LIMIT 1 OFFSET " + offset + ")";
    return " WHERE (owner, position) IN (SELECT owner, position FROM " + name +
           " ORDER BY owner, position LIMIT 1 OFFSET " + offset + ")";
}

void deleteRows(FuzzedDataProvider& in) {
    writeFile(setup->file, setup->store);
    Database db(setup->file);
    const Table& table = pickTable(in);
    const std::string name = sqlName(table.name);
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0:
            db.exec("DROP TABLE " + name);
            break;
        case 1:
            db.exec("DELETE FROM " + name);
            break;
        default:
            db.exec("DELETE FROM " + name + rowFilter(in, table));
            break;
    }
}

void wrongType(FuzzedDataProvider& in) {
    writeFile(setup->file, setup->store);
    Database db(setup->file);
    const Table& table = pickTable(in);
    const std::string name = sqlName(table.name);
    // STRICT tables refuse most values of another type: rebuild the table
    // without it, or at least let values past the CHECKs.
    if (in.ConsumeBool()) {
        db.exec("CREATE TABLE fuzz_copy AS SELECT * FROM " + name);
        db.exec("DROP TABLE " + name);
        db.exec("ALTER TABLE fuzz_copy RENAME TO " + name);
    }
    db.exec("PRAGMA ignore_check_constraints = 1");
    const std::string column =
        sqlName(table.columns[in.ConsumeIntegralInRange<std::size_t>(0, table.columns.size() - 1)]);
    // One row, or all of them.
    const std::string where = in.ConsumeBool() ? rowFilter(in, table) : "";
    sqlite3_stmt* update = db.prepare("UPDATE " + name + " SET " + column + " = ?" + where);
    if (!update) return;
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0: {
            const std::string blob = in.ConsumeRandomLengthString(16);
            sqlite3_bind_blob(update, 1, blob.data(), static_cast<int>(blob.size()), SQLITE_TRANSIENT);
            break;
        }
        case 1: {
            // Any bytes, invalid UTF-8 among them.
            const std::string text = in.ConsumeRandomLengthString(16);
            sqlite3_bind_text(update, 1, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
            break;
        }
        case 2:
            sqlite3_bind_double(update, 1, in.ConsumeFloatingPoint<double>());
            break;
        case 3:
            sqlite3_bind_null(update, 1);
            break;
        default:
            sqlite3_bind_int64(update, 1, in.ConsumeIntegral<std::int64_t>());
            break;
    }
    sqlite3_step(update);
    sqlite3_finalize(update);
}

void damage(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0:
            writeFile(setup->file, in.ConsumeRemainingBytesAsString());
            break;
        case 1:
            writeFile(setup->file,
                      setup->store.substr(0, in.ConsumeIntegralInRange<std::size_t>(0, setup->store.size())));
            break;
        case 2:
            overwriteBytes(in);
            break;
        case 3:
            otherDatabase(in);
            break;
        case 4:
            deleteRows(in);
            break;
        default:
            wrongType(in);
            break;
    }
}

void checkDiagnostic(const vel::diag::Exception& e, const char* stage) {
    if (e.identifier().empty()) fail(std::string(stage) + ": diagnostic without identifier: " + e.what());
}

// What the descriptor tool does with the file: check it, then dump it.
void openAndDump() {
    coder::RepositoryOptions options;
    options.access = coder::RepositoryOptions::Access::ReadOnly;
    try {
        coder::Repository repository(setup->file, options);
        try {
            repository.getFormatVersion();
            repository.checkIntegrity();
        } catch (const vel::diag::Exception& e) {
            checkDiagnostic(e, "check");
        }
        if (coder::descriptor::dumpText(repository).empty()) fail("an empty dump");
        if (coder::descriptor::dumpJson(repository).empty()) fail("an empty JSON dump");
    } catch (const vel::diag::Exception& e) {
        checkDiagnostic(e, "open or dump");
    } catch (const std::exception& e) {
        fail(std::string("non-diagnostic exception: ") + e.what());
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    buildStore();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    removeFiles();
    damage(in);
    openAndDump();
    return 0;
}
