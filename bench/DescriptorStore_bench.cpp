// Writing a code descriptor: N graphical blocks through the store, against
// the same rows written with raw prepared SQLite inserts.
//
// Each block has an input and an output port with one data interface each,
// one continuous state of dimensions [2, 3] and one block parameter; every
// block is appended to the one graphical system of the model's block
// hierarchy map. Both writers start from a fresh file with the store's
// schema and write everything in one transaction. Before the benchmarks
// run, main() checks that both writers leave exactly the same rows.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "coder/descriptor/Descriptors.hpp"

namespace {

using coder::Repository;
using coder::Transaction;
using namespace coder::descriptor;
using std::filesystem::path;

template <class String>
String number(long long value) {
    const std::string digits = std::to_string(value);
    return String(digits.begin(), digits.end());
}

// A fresh file holding the store's schema and nothing else.
void createEmptyStore(const path& file) {
    std::filesystem::remove(file);
    Repository repository(file);
}

void writeThroughStore(Repository& repository, int blocks) {
    Transaction transaction(repository);
    ModelCreator modelCreator(repository);
    modelCreator.setModelName(u"bench");
    Model model = modelCreator.createModel();
    BlockHierarchyMap map = BlockHierarchyMapCreator(repository).createBlockHierarchyMap();
    model.setBlockHierarchyMap(map);
    GraphicalSystemCreator systemCreator(repository);
    systemCreator.setName(u"bench");
    systemCreator.setGraphicalName(u"bench");
    GraphicalSystem root = systemCreator.createGraphicalSystem();
    map.getGraphicalSystems().append(root);
    const Sequence<GraphicalBlock> rootBlocks = root.getGraphicalBlocks();

    GraphicalBlockCreator blockCreator(repository);
    blockCreator.setType(u"Gain");
    PortCreator portCreator(repository);
    portCreator.setConnected(true);
    DataInterfaceCreator dataInterfaceCreator(repository);
    dataInterfaceCreator.setImplementation(u"StructElement");
    dataInterfaceCreator.setOwner(u"bench_signals");
    dataInterfaceCreator.setTypeName(u"double");
    StateCreator stateCreator(repository);
    BlockParameterCreator parameterCreator(repository);
    parameterCreator.setName(u"Gain");

    for (int i = 0; i < blocks; ++i) {
        const ustring name = u"b" + number<ustring>(i);
        blockCreator.setGraphicalName(name);
        blockCreator.setName(name);
        blockCreator.setSID(u"bench:" + number<ustring>(i));
        GraphicalBlock block = blockCreator.createGraphicalBlock();
        for (int p = 0; p < 2; ++p) {
            const ustring portName = p == 0 ? u"In1" : u"Out1";
            portCreator.setGraphicalName(portName);
            Port port = portCreator.createPort();
            dataInterfaceCreator.setIdentifier(u"bench_signals." + name + u"_" + portName);
            dataInterfaceCreator.setGraphicalName(portName);
            port.getDataInterfaces().append(dataInterfaceCreator.createDataInterface());
            (p == 0 ? block.getDataInputPorts() : block.getDataOutputPorts()).append(port);
        }
        State state = stateCreator.createState();
        state.getDimensions().append(IntegerArrayElement(2));
        state.getDimensions().append(IntegerArrayElement(3));
        block.getContinuousStates().append(state);
        block.getBlockParameters().append(parameterCreator.createBlockParameter());
        rootBlocks.append(block);
    }
    transaction.commit();
}

// The same rows, written with the SQLite C API: every statement prepared
// once, texts bound without copying, as the store does.
class RawWriter {
public:
    explicit RawWriter(const path& file) {
        if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) fail("open");
    }
    ~RawWriter() {
        for (sqlite3_stmt* statement : statements_) sqlite3_finalize(statement);
        sqlite3_close(db_);
    }
    RawWriter(const RawWriter&) = delete;
    RawWriter& operator=(const RawWriter&) = delete;

    void write(int blocks) {
        sqlite3_stmt* insertModel = prepare(
            "INSERT INTO \"Model\" (\"ModelName\", \"KordelVersion\", \"SharedCodeManagerPath\", "
            "\"BlockHierarchyMap\", \"FPCInfo\") VALUES (?, '', '', NULL, NULL)");
        sqlite3_stmt* insertMap = prepare("INSERT INTO \"BlockHierarchyMap\" DEFAULT VALUES");
        sqlite3_stmt* setMap = prepare("UPDATE \"Model\" SET \"BlockHierarchyMap\" = ? WHERE id = ?");
        sqlite3_stmt* insertSystem = prepare(
            "INSERT INTO \"GraphicalSystem\" (\"Name\", \"GraphicalName\", \"SubsystemType\", \"MaskType\") "
            "VALUES (?, ?, NULL, '')");
        sqlite3_stmt* insertBlock = prepare(
            "INSERT INTO \"GraphicalBlock\" (\"GraphicalName\", \"Name\", \"SID\", \"Type\", "
            "\"Description\", "
            "\"ReferencedModelName\", \"IsProtectedModelBlock\", \"Virtual\", \"NumFcnCallOutputPorts\", "
            "\"ParentSystemSID\") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        sqlite3_stmt* insertPort = prepare(
            "INSERT INTO \"Port\" (\"GraphicalName\", \"SignalLabel\", \"Connected\", \"TestPoint\", "
            "\"GraphicalSource\") VALUES (?, ?, ?, ?, ?)");
        sqlite3_stmt* insertDataInterface = prepare(
            "INSERT INTO \"DataInterface\" (\"Identifier\", \"Implementation\", \"Owner\", \"TypeName\", "
            "\"GraphicalName\") VALUES (?, ?, ?, ?, ?)");
        sqlite3_stmt* insertState = prepare("INSERT INTO \"State\" DEFAULT VALUES");
        sqlite3_stmt* insertParameter = prepare("INSERT INTO \"BlockParameter\" (\"Name\") VALUES (?)");
        auto element = [this](const char* table) {
            return prepare("INSERT INTO \"" + std::string(table) +
                           "\" (owner, position, element) VALUES (?, ?, ?)");
        };
        sqlite3_stmt* appendMapSystem = element("BlockHierarchyMap_GraphicalSystems");
        sqlite3_stmt* appendSystemBlock = element("GraphicalSystem_GraphicalBlocks");
        sqlite3_stmt* appendPortInterface = element("Port_DataInterfaces");
        sqlite3_stmt* appendInput = element("GraphicalBlock_DataInputPorts");
        sqlite3_stmt* appendOutput = element("GraphicalBlock_DataOutputPorts");
        sqlite3_stmt* appendState = element("GraphicalBlock_ContinuousStates");
        sqlite3_stmt* appendParameter = element("GraphicalBlock_BlockParameters");
        sqlite3_stmt* appendDimension =
            prepare("INSERT INTO \"State_Dimensions\" (owner, position, value) VALUES (?, ?, ?)");

        exec("BEGIN IMMEDIATE");
        bindText(insertModel, 1, "bench");
        const sqlite3_int64 model = insert(insertModel);
        const sqlite3_int64 map = insert(insertMap);
        sqlite3_bind_int64(setMap, 1, map);
        sqlite3_bind_int64(setMap, 2, model);
        insert(setMap);
        bindText(insertSystem, 1, "bench");
        bindText(insertSystem, 2, "bench");
        const sqlite3_int64 root = insert(insertSystem);
        append(appendMapSystem, map, 0, root);

        for (int i = 0; i < blocks; ++i) {
            const std::string name = "b" + number<std::string>(i);
            const std::string sid = "bench:" + number<std::string>(i);
            bindText(insertBlock, 1, name);
            bindText(insertBlock, 2, name);
            bindText(insertBlock, 3, sid);
            bindText(insertBlock, 4, "Gain");
            bindText(insertBlock, 5, "");
            bindText(insertBlock, 6, "");
            sqlite3_bind_int64(insertBlock, 7, 0);
            bindText(insertBlock, 8, "");
            sqlite3_bind_int64(insertBlock, 9, 0);
            sqlite3_bind_null(insertBlock, 10);
            const sqlite3_int64 block = insert(insertBlock);
            for (int p = 0; p < 2; ++p) {
                const std::string portName = p == 0 ? "In1" : "Out1";
                bindText(insertPort, 1, portName);
                bindText(insertPort, 2, "");
                sqlite3_bind_int64(insertPort, 3, 1);
                sqlite3_bind_int64(insertPort, 4, 0);
                sqlite3_bind_null(insertPort, 5);
                const sqlite3_int64 port = insert(insertPort);
                const std::string identifier = "bench_signals." + name + "_" + portName;
                bindText(insertDataInterface, 1, identifier);
                bindText(insertDataInterface, 2, "StructElement");
                bindText(insertDataInterface, 3, "bench_signals");
                bindText(insertDataInterface, 4, "double");
                bindText(insertDataInterface, 5, portName);
                append(appendPortInterface, port, 0, insert(insertDataInterface));
                append(p == 0 ? appendInput : appendOutput, block, 0, port);
            }
            const sqlite3_int64 state = insert(insertState);
            append(appendDimension, state, 0, 2);
            append(appendDimension, state, 1, 3);
            append(appendState, block, 0, state);
            bindText(insertParameter, 1, "Gain");
            append(appendParameter, block, 0, insert(insertParameter));
            append(appendSystemBlock, root, i, block);
        }
        exec("COMMIT");
    }

private:
    [[noreturn]] void fail(const char* what) {
        std::fprintf(stderr, "raw SQLite writer: %s: %s\n", what, sqlite3_errmsg(db_));
        std::abort();
    }

    sqlite3_stmt* prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v3(db_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
            SQLITE_OK)
            fail("prepare");
        statements_.push_back(statement);
        return statement;
    }

    void exec(const char* sql) {
        if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail(sql);
    }

    // The text must stay alive until the statement has run.
    static void bindText(sqlite3_stmt* statement, int parameter, const std::string& text) {
        sqlite3_bind_text(statement, parameter, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    }
    static void bindText(sqlite3_stmt* statement, int parameter, const char* literal) {
        sqlite3_bind_text(statement, parameter, literal, -1, SQLITE_STATIC);
    }

    sqlite3_int64 insert(sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE) fail("insert");
        sqlite3_reset(statement);
        return sqlite3_last_insert_rowid(db_);
    }

    void append(sqlite3_stmt* statement, sqlite3_int64 owner, sqlite3_int64 position, sqlite3_int64 value) {
        sqlite3_bind_int64(statement, 1, owner);
        sqlite3_bind_int64(statement, 2, position);
        sqlite3_bind_int64(statement, 3, value);
        insert(statement);
    }

    sqlite3* db_ = nullptr;
    std::vector<sqlite3_stmt*> statements_;
};

path benchFile(const char* name) { return std::filesystem::temp_directory_path() / name; }

void BM_StoreWritesBlocks(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const path file = benchFile("velcg-bench-store.strata");
    for (auto _ : state) {
        state.PauseTiming();
        createEmptyStore(file);
        auto repository = std::make_unique<Repository>(file);
        state.ResumeTiming();
        writeThroughStore(*repository, blocks);
        state.PauseTiming();
        repository.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * blocks);
    std::filesystem::remove(file);
}

void BM_RawSqliteWritesBlocks(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const path file = benchFile("velcg-bench-raw.strata");
    for (auto _ : state) {
        state.PauseTiming();
        createEmptyStore(file);
        auto writer = std::make_unique<RawWriter>(file);
        state.ResumeTiming();
        writer->write(blocks);
        state.PauseTiming();
        writer.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * blocks);
    std::filesystem::remove(file);
}

BENCHMARK(BM_StoreWritesBlocks)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawSqliteWritesBlocks)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

// Every row of every table of a file, in key order, as text.
std::string allRows(const path& file) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    std::vector<std::string> tables;
    sqlite3_stmt* list = nullptr;
    sqlite3_prepare_v2(db, "SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name", -1, &list,
                       nullptr);
    while (sqlite3_step(list) == SQLITE_ROW)
        tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(list, 0)));
    sqlite3_finalize(list);
    std::string out;
    for (const std::string& table : tables) {
        out += table + "\n";
        sqlite3_stmt* rows = nullptr;
        sqlite3_prepare_v2(db, ("SELECT * FROM \"" + table + "\"").c_str(), -1, &rows, nullptr);
        while (sqlite3_step(rows) == SQLITE_ROW) {
            for (int c = 0; c < sqlite3_column_count(rows); ++c) {
                const auto* text = sqlite3_column_text(rows, c);
                out += text ? reinterpret_cast<const char*>(text) : "NULL";
                out += c + 1 < sqlite3_column_count(rows) ? "|" : "\n";
            }
        }
        sqlite3_finalize(rows);
    }
    sqlite3_close(db);
    return out;
}

// Both writers must leave the same rows, or the comparison means nothing.
bool writersAgree() {
    const path storeFile = benchFile("velcg-bench-agree-store.strata");
    const path rawFile = benchFile("velcg-bench-agree-raw.strata");
    createEmptyStore(storeFile);
    {
        Repository repository(storeFile);
        writeThroughStore(repository, 50);
    }
    createEmptyStore(rawFile);
    RawWriter(rawFile).write(50);
    const std::string storeRows = allRows(storeFile);
    const std::string rawRows = allRows(rawFile);
    std::filesystem::remove(storeFile);
    std::filesystem::remove(rawFile);
    return storeRows == rawRows && storeRows.size() > 1000;
}

} // namespace

int main(int argc, char** argv) {
    if (!writersAgree()) {
        std::fprintf(stderr, "the store and the raw SQLite writer leave different rows\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
