// Writing a code descriptor, each way against the same rows written with
// raw prepared SQLite inserts (the SQLite C API, every statement prepared
// once, one transaction, into a fresh file holding the store's schema).
//
// Store writes: N graphical blocks through the record creators. Each block
// has an input and an output port with one data interface each, one
// continuous state of dimensions [2, 3] and one block parameter; every block
// is appended to the one graphical system of the model's block hierarchy
// map.
//
// Model serialization: CGModel::serializeModel of a model of N blocks at
// switch values 2 and 4 (see "The serialized model" below for its shape and
// the rows each value writes), and the time serializeModel takes to return
// when the pass runs in the background (switch value 1).
//
// Before the benchmarks run, main() checks that each raw writer leaves
// exactly the rows of what it is compared with, table by table, and exits
// with status 1 if not.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <sqlite3.h>

#include "CG/DataInterface.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/ExternalInput.hpp"
#include "velcg/Features.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelParameter.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/Region.hpp"
#include "velcg/State.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"
#include "velcg/StoredModelParameter.hpp"
#include "velcg/StoredParameter.hpp"
#include "velcg/System.hpp"

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

// A connection to a store file for the raw writers: every statement
// prepared once, texts bound without copying, no locking by SQLite (one
// thread uses it), as the store does. Any failure ends the process.
class RawSqlite {
public:
    explicit RawSqlite(const path& file) {
        if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) !=
            SQLITE_OK)
            fail("open");
    }
    ~RawSqlite() {
        for (sqlite3_stmt* statement : statements_) sqlite3_finalize(statement);
        sqlite3_close(db_);
    }
    RawSqlite(const RawSqlite&) = delete;
    RawSqlite& operator=(const RawSqlite&) = delete;

protected:
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

    // An insert into the sequence table `table` of (owner, position, element).
    sqlite3_stmt* prepareAppend(const std::string& table, const char* column = "element") {
        return prepare("INSERT INTO \"" + table + "\" (owner, position, " + column + ") VALUES (?, ?, ?)");
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

    void appendText(sqlite3_stmt* statement, sqlite3_int64 owner, sqlite3_int64 position,
                    const std::string& value) {
        sqlite3_bind_int64(statement, 1, owner);
        sqlite3_bind_int64(statement, 2, position);
        bindText(statement, 3, value);
        insert(statement);
    }

private:
    sqlite3* db_ = nullptr;
    std::vector<sqlite3_stmt*> statements_;
};

// The rows of writeThroughStore, written with the SQLite C API.
class RawWriter : private RawSqlite {
public:
    using RawSqlite::RawSqlite;

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

// ---------------------------------------------------------------------------
// The serialized model.
//
// One root subsystem in the block hierarchy map holding N blocks. Each block
// has two data input ports, each with one region carrying a data interface,
// one continuous state of dimensions [2, 3] and one parameter referring to
// the model's one model parameter (defined by block 0, used by blocks 0 and
// 1). Three systems, the first called by block 0, and three root inputs.
//
// What serializeModel writes for it: at switch value 2 the ports carry their
// data interfaces; at 4 only the ports of blocks recorded as actual sources
// of async-queue blocks would, and the model records none, so no port does,
// but the systems (each call-site block written again in full) and the root
// inputs are written. The model parameter is written once per block
// parameter that refers to it, each time with its whole list of users (so
// the users are kept to two: a list of all N blocks would make N * N rows).
// There are no async-queue blocks and no overwritable I/O pairs: the I/O map
// is an empty record. Blocks: 0 measures what a pass costs besides the
// blocks (opening and creating the store, the commit).

namespace shape {

const std::string kModel = "bench";
const std::string kKordelVersion = "1.0";
const std::string kParameter = "K";
constexpr int kPortsPerBlock = 2;
constexpr int kSystems = 3;
constexpr int kInputs = 3;
const char* const kSystemNames[kSystems] = {"step", "initialize", "terminate"};

std::string blockName(int block) { return "b" + std::to_string(block); }
std::string blockSID(int block) { return kModel + ":" + std::to_string(block); }
std::string portLabel(int port) { return "u" + std::to_string(port + 1); }
std::string dataInterfaceIdentifier(int block, int port) {
    return kModel + "_signals." + blockName(block) + "_" + portLabel(port);
}
std::string systemIdentifier(int system) { return kModel + "_" + kSystemNames[system]; }
std::string inputIdentifier(int input) { return kModel + "_in" + std::to_string(input); }
// The blocks that use the model parameter: the first two.
int parameterUsers(int blocks) { return std::min(blocks, 2); }

} // namespace shape

std::wstring wide(const std::string& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

class BenchModel : public VelCG::CGModel {
public:
    // The pass calls getName: wait for it before this part is gone.
    ~BenchModel() override { waitForSerialization(); }
    std::wstring getName() const override { return wide(shape::kModel); }
    std::wstring getKordelVersion() const override { return wide(shape::kKordelVersion); }
    using CGModel::waitForSerialization;
};

class BenchSystem : public VelCG::System {
public:
    explicit BenchSystem(std::string name) : name_(std::move(name)) {}
    std::string getName() const override { return name_; }

private:
    std::string name_;
};

std::unique_ptr<BenchModel> buildModel(int blocks) {
    auto model = std::make_unique<BenchModel>();

    auto* parameterImpl = new VelCG::StoredModelParameter(wide(shape::kParameter));
    parameterImpl->setOriginalName(wide(shape::kParameter));
    parameterImpl->setIsTunable(true);
    parameterImpl->setIsWorkspaceVar(true);
    parameterImpl->setWorkspaceVarName(wide(shape::kParameter));
    auto sharedParameter = std::make_unique<VelCG::ModelParameter>(parameterImpl);
    VelCG::ModelParameter* parameter = sharedParameter.get();
    model->addModelParameter(std::move(sharedParameter));

    auto root = std::make_unique<VelCG::StoredGraphicalSubsystem>(wide(shape::kModel),
                                                                  VelCG::GraphicalSubsystemType::Root);
    root->setSID(wide(shape::kModel));
    std::vector<VelCG::GraphicalBlock*> added;
    added.reserve(static_cast<std::size_t>(blocks));
    for (int i = 0; i < blocks; ++i) {
        const std::string name = shape::blockName(i);
        auto impl = std::make_unique<VelCG::StoredGraphicalBlock>(wide(name));
        impl->setSID(wide(shape::blockSID(i)));
        impl->setBlockPath(wide(shape::kModel + "/" + name));
        impl->setType(L"Gain");
        impl->setCGModel(model.get());
        for (int p = 0; p < shape::kPortsPerBlock; ++p) {
            VelCG::Port* port = impl->addDataInputPort(std::make_unique<VelCG::Port>());
            port->setCGModel(model.get());
            port->setSignalLabel(wide(shape::portLabel(p)));
            auto region = std::make_unique<VelCG::Region>();
            region->setSource(shape::dataInterfaceIdentifier(i, p));
            CG::DataInterface* dataInterface =
                CG::DataInterface::create({shape::dataInterfaceIdentifier(i, p), "StructElement",
                                           shape::kModel + "_signals", "double", name});
            region->setDataInterface(dataInterface);
            dataInterface->release();
            port->addRegion(std::move(region));
        }
        impl->addContinuousState(std::make_unique<VelCG::State>(std::vector<int>{2, 3}));
        impl->addParameter(
            std::make_unique<VelCG::Parameter>(new VelCG::StoredParameter(L"Gain", {parameter})));
        added.push_back(root->addGraphicalBlock(std::make_unique<VelCG::GraphicalBlock>(impl.release())));
    }
    if (blocks > 0) parameterImpl->setGraphicalSource(added.front());
    parameterImpl->setGraphicalReferences(
        std::vector<VelCG::GraphicalBlock*>(added.begin(), added.begin() + shape::parameterUsers(blocks)));
    model->getBlockHierarchyMap()->addGraphicalSubsystem(std::move(root));

    for (int s = 0; s < shape::kSystems; ++s) {
        auto system = std::make_unique<BenchSystem>(shape::kSystemNames[s]);
        system->setIdentifier(shape::systemIdentifier(s));
        if (s == 0 && blocks > 0) system->addGraphicalCallsite(added.front());
        model->addSystem(std::move(system));
    }
    for (int k = 0; k < shape::kInputs; ++k) {
        auto input = std::make_unique<VelCG::ExternalInput>();
        input->setCGTypeIndex(k);
        input->setStorageClass(k, "ImportedExtern");
        input->setIdentifier(shape::inputIdentifier(k));
        input->setPadding(8 * k);
        model->addExternalInput(std::move(input));
    }
    return model;
}

// The rows serializeModel writes for buildModel(blocks) at switch value 2 or
// 4, in the order it writes them (so that every record gets the same id),
// written with the SQLite C API.
class RawModelWriter : private RawSqlite {
public:
    using RawSqlite::RawSqlite;

    void write(int blocks, int level) {
        if (level != 2 && level != 4) fail("only switch values 2 and 4 are written");
        prepareStatements();
        // At 4 no block is an actual async-queue source, so no port keeps
        // its data interfaces.
        const bool portDataInterfaces = level == 2;
        parameterSource_ = blocks > 0 ? shape::blockSID(0) : std::string();
        parameterUsers_.clear();
        for (int i = 0; i < shape::parameterUsers(blocks); ++i) parameterUsers_.push_back(shape::blockSID(i));

        exec("BEGIN IMMEDIATE");
        bindText(insertModel_, 1, shape::kModel);
        bindText(insertModel_, 2, shape::kKordelVersion);
        const sqlite3_int64 model = insert(insertModel_);
        const sqlite3_int64 map = insert(insertMap_);
        bindText(insertGraphicalSystem_, 1, shape::kModel);
        bindText(insertGraphicalSystem_, 2, shape::kModel);
        const sqlite3_int64 root = insert(insertGraphicalSystem_);
        for (int i = 0; i < blocks; ++i)
            append(appendSystemBlock_, root, i, writeBlock(i, portDataInterfaces));
        append(appendMapSystem_, map, 0, root);
        setReference(setModelMap_, model, map);

        if (level >= 4) {
            for (int s = 0; s < shape::kSystems; ++s) {
                const std::string identifier = shape::systemIdentifier(s);
                bindText(insertSystem_, 1, identifier);
                bindText(insertSystem_, 2, shape::kSystemNames[s]);
                const sqlite3_int64 system = insert(insertSystem_);
                if (s == 0 && blocks > 0)
                    append(appendCallSite_, system, 0, writeBlock(0, portDataInterfaces));
                append(appendModelSystem_, model, s, system);
            }
            for (int k = 0; k < shape::kInputs; ++k) {
                const std::string identifier = shape::inputIdentifier(k);
                sqlite3_bind_int64(insertInput_, 1, k);      // CGTypeIndex
                bindText(insertInput_, 2, "ImportedExtern"); // StorageClass
                sqlite3_bind_int64(insertInput_, 3, 1);      // RequiresGlobalAccess
                bindText(insertInput_, 4, identifier);       // Identifier
                sqlite3_bind_int64(insertInput_, 5, -1);     // VarGroupIndex
                sqlite3_bind_int64(insertInput_, 6, -1);     // VarGroupMemberIndex
                sqlite3_bind_int64(insertInput_, 7, 0);      // HasVarDims
                sqlite3_bind_int64(insertInput_, 8, -1);     // CanonicalDimSizeDWorkIndex
                sqlite3_bind_int64(insertInput_, 9, 0);      // HasCanonicalDimSizeDWorkIndex
                sqlite3_bind_int64(insertInput_, 10, -1);    // SizeVarGroupIndex
                sqlite3_bind_int64(insertInput_, 11, -1);    // SizeVarGroupMemberIndex
                sqlite3_bind_int64(insertInput_, 12, -1);    // DimSizeDWork
                sqlite3_bind_int64(insertInput_, 13, 8 * k); // Padding
                append(appendModelInput_, model, k, insert(insertInput_));
            }
        }
        setReference(setModelIOMap_, model, insert(insertIOMap_));
        exec("COMMIT");
    }

private:
    void prepareStatements() {
        insertModel_ = prepare(
            "INSERT INTO \"Model\" (\"ModelName\", \"KordelVersion\", \"SharedCodeManagerPath\", "
            "\"BlockHierarchyMap\", \"FPCInfo\") VALUES (?, ?, '', NULL, NULL)");
        insertMap_ = prepare("INSERT INTO \"BlockHierarchyMap\" DEFAULT VALUES");
        setModelMap_ = prepare("UPDATE \"Model\" SET \"BlockHierarchyMap\" = ? WHERE id = ?");
        insertGraphicalSystem_ = prepare(
            "INSERT INTO \"GraphicalSystem\" (\"Name\", \"GraphicalName\", \"SubsystemType\", \"MaskType\") "
            "VALUES (?, ?, 'root', '')");
        insertBlock_ = prepare(
            "INSERT INTO \"GraphicalBlock\" (\"GraphicalName\", \"Name\", \"SID\", \"Type\", "
            "\"Description\", "
            "\"ReferencedModelName\", \"IsProtectedModelBlock\", \"Virtual\", \"NumFcnCallOutputPorts\", "
            "\"ParentSystemSID\") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        insertPort_ = prepare(
            "INSERT INTO \"Port\" (\"GraphicalName\", \"SignalLabel\", \"Connected\", \"TestPoint\", "
            "\"GraphicalSource\") VALUES (?, ?, ?, ?, ?)");
        insertDataInterface_ = prepare(
            "INSERT INTO \"DataInterface\" (\"Identifier\", \"Implementation\", \"Owner\", \"TypeName\", "
            "\"GraphicalName\") VALUES (?, ?, ?, ?, ?)");
        insertState_ = prepare("INSERT INTO \"State\" DEFAULT VALUES");
        insertBlockParameter_ = prepare("INSERT INTO \"BlockParameter\" (\"Name\") VALUES (?)");
        insertModelParameter_ = prepare(
            "INSERT INTO \"ModelParameter\" (\"Name\", \"OriginalName\", \"Alias\", \"Tunable\", "
            "\"WorkspaceVariable\", \"WorkspaceVariableName\", \"GraphicalSourceSID\") "
            "VALUES (?, ?, ?, ?, ?, ?, ?)");
        insertSystem_ = prepare("INSERT INTO \"System\" (\"Identifier\", \"Name\") VALUES (?, ?)");
        insertInput_ = prepare(
            "INSERT INTO \"ExternalInput\" (\"CGTypeIndex\", \"StorageClass\", \"RequiresGlobalAccess\", "
            "\"Identifier\", \"VarGroupIndex\", \"VarGroupMemberIndex\", \"HasVarDims\", "
            "\"CanonicalDimSizeDWorkIndex\", \"HasCanonicalDimSizeDWorkIndex\", \"SizeVarGroupIndex\", "
            "\"SizeVarGroupMemberIndex\", \"DimSizeDWork\", \"Padding\") "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        insertIOMap_ = prepare("INSERT INTO \"IOMap\" DEFAULT VALUES");
        setModelIOMap_ = prepare("UPDATE \"Model\" SET \"FPCInfo\" = ? WHERE id = ?");

        appendMapSystem_ = prepareAppend("BlockHierarchyMap_GraphicalSystems");
        appendSystemBlock_ = prepareAppend("GraphicalSystem_GraphicalBlocks");
        appendInputPort_ = prepareAppend("GraphicalBlock_DataInputPorts");
        appendPortInterface_ = prepareAppend("Port_DataInterfaces");
        appendState_ = prepareAppend("GraphicalBlock_ContinuousStates");
        appendDimension_ = prepareAppend("State_Dimensions", "value");
        appendBlockParameter_ = prepareAppend("GraphicalBlock_BlockParameters");
        appendModelParameter_ = prepareAppend("BlockParameter_ModelParameters");
        appendParameterUser_ = prepareAppend("ModelParameter_GraphicalReferencesSID", "value");
        appendCallSite_ = prepareAppend("System_GraphicalCallSites");
        appendModelSystem_ = prepareAppend("Model_Systems");
        appendModelInput_ = prepareAppend("Model_ExternalInputs");
    }

    void setReference(sqlite3_stmt* update, sqlite3_int64 id, sqlite3_int64 target) {
        sqlite3_bind_int64(update, 1, target);
        sqlite3_bind_int64(update, 2, id);
        insert(update);
    }

    // Block `i` with its ports, state and parameter; returns its id.
    sqlite3_int64 writeBlock(int i, bool portDataInterfaces) {
        const std::string name = shape::blockName(i);
        const std::string sid = shape::blockSID(i);
        bindText(insertBlock_, 1, name);
        bindText(insertBlock_, 2, name);
        bindText(insertBlock_, 3, sid);
        bindText(insertBlock_, 4, "Gain");
        bindText(insertBlock_, 5, "");
        bindText(insertBlock_, 6, "");
        sqlite3_bind_int64(insertBlock_, 7, 0);
        bindText(insertBlock_, 8, "NonVirtual");
        sqlite3_bind_int64(insertBlock_, 9, 0);
        bindText(insertBlock_, 10, shape::kModel);
        const sqlite3_int64 block = insert(insertBlock_);

        const std::string owner = shape::kModel + "_signals";
        for (int p = 0; p < shape::kPortsPerBlock; ++p) {
            const std::string label = shape::portLabel(p);
            bindText(insertPort_, 1, "");
            bindText(insertPort_, 2, label);
            sqlite3_bind_int64(insertPort_, 3, 0);
            sqlite3_bind_int64(insertPort_, 4, 0);
            sqlite3_bind_null(insertPort_, 5);
            const sqlite3_int64 port = insert(insertPort_);
            if (portDataInterfaces) {
                const std::string identifier = shape::dataInterfaceIdentifier(i, p);
                bindText(insertDataInterface_, 1, identifier);
                bindText(insertDataInterface_, 2, "StructElement");
                bindText(insertDataInterface_, 3, owner);
                bindText(insertDataInterface_, 4, "double");
                bindText(insertDataInterface_, 5, name);
                append(appendPortInterface_, port, 0, insert(insertDataInterface_));
            }
            append(appendInputPort_, block, p, port);
        }

        const sqlite3_int64 state = insert(insertState_);
        append(appendDimension_, state, 0, 2);
        append(appendDimension_, state, 1, 3);
        append(appendState_, block, 0, state);

        bindText(insertBlockParameter_, 1, "Gain");
        const sqlite3_int64 blockParameter = insert(insertBlockParameter_);
        bindText(insertModelParameter_, 1, shape::kParameter);
        bindText(insertModelParameter_, 2, shape::kParameter);
        sqlite3_bind_int64(insertModelParameter_, 3, 0);
        sqlite3_bind_int64(insertModelParameter_, 4, 1);
        sqlite3_bind_int64(insertModelParameter_, 5, 1);
        bindText(insertModelParameter_, 6, shape::kParameter);
        if (parameterSource_.empty())
            sqlite3_bind_null(insertModelParameter_, 7);
        else
            bindText(insertModelParameter_, 7, parameterSource_);
        const sqlite3_int64 modelParameter = insert(insertModelParameter_);
        for (std::size_t u = 0; u < parameterUsers_.size(); ++u)
            appendText(appendParameterUser_, modelParameter, static_cast<sqlite3_int64>(u),
                       parameterUsers_[u]);
        append(appendModelParameter_, blockParameter, 0, modelParameter);
        append(appendBlockParameter_, block, 0, blockParameter);
        return block;
    }

    std::string parameterSource_;
    std::vector<std::string> parameterUsers_;
    sqlite3_stmt* insertModel_ = nullptr;
    sqlite3_stmt* insertMap_ = nullptr;
    sqlite3_stmt* setModelMap_ = nullptr;
    sqlite3_stmt* insertGraphicalSystem_ = nullptr;
    sqlite3_stmt* insertBlock_ = nullptr;
    sqlite3_stmt* insertPort_ = nullptr;
    sqlite3_stmt* insertDataInterface_ = nullptr;
    sqlite3_stmt* insertState_ = nullptr;
    sqlite3_stmt* insertBlockParameter_ = nullptr;
    sqlite3_stmt* insertModelParameter_ = nullptr;
    sqlite3_stmt* insertSystem_ = nullptr;
    sqlite3_stmt* insertInput_ = nullptr;
    sqlite3_stmt* insertIOMap_ = nullptr;
    sqlite3_stmt* setModelIOMap_ = nullptr;
    sqlite3_stmt* appendMapSystem_ = nullptr;
    sqlite3_stmt* appendSystemBlock_ = nullptr;
    sqlite3_stmt* appendInputPort_ = nullptr;
    sqlite3_stmt* appendPortInterface_ = nullptr;
    sqlite3_stmt* appendState_ = nullptr;
    sqlite3_stmt* appendDimension_ = nullptr;
    sqlite3_stmt* appendBlockParameter_ = nullptr;
    sqlite3_stmt* appendModelParameter_ = nullptr;
    sqlite3_stmt* appendParameterUser_ = nullptr;
    sqlite3_stmt* appendCallSite_ = nullptr;
    sqlite3_stmt* appendModelSystem_ = nullptr;
    sqlite3_stmt* appendModelInput_ = nullptr;
};

// A fresh, empty directory; serializeModel creates its store there.
path freshDirectory(const char* name) {
    const path directory = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(directory);
    std::filesystem::create_directories(directory);
    return directory;
}

// serializeModel at switch value state.range(1) (2 or 4: on this thread),
// into a fresh directory each time; the model is built before timing starts.
void BM_SerializeModel(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const int level = static_cast<int>(state.range(1));
    const auto model = buildModel(blocks);
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, level);
    path directory;
    for (auto _ : state) {
        state.PauseTiming();
        directory = freshDirectory("velcg-bench-serialize");
        state.ResumeTiming();
        try {
            model->serializeModel(directory.wstring());
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
            break;
        }
    }
    if (blocks > 0) state.SetItemsProcessed(state.iterations() * blocks);
    std::filesystem::remove_all(directory);
}

// The same rows as BM_SerializeModel, into a fresh store created beforehand.
void BM_RawSqliteWritesModelRows(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const int level = static_cast<int>(state.range(1));
    const path file = benchFile("velcg-bench-raw-model.strata");
    for (auto _ : state) {
        state.PauseTiming();
        createEmptyStore(file);
        auto writer = std::make_unique<RawModelWriter>(file);
        state.ResumeTiming();
        writer->write(blocks, level);
        state.PauseTiming();
        writer.reset();
        state.ResumeTiming();
    }
    if (blocks > 0) state.SetItemsProcessed(state.iterations() * blocks);
    std::filesystem::remove(file);
}

// How long serializeModel takes to return when the pass runs in the
// background (switch value 1). Outside the timing, serializeModelAfterScriv
// joins the pass (raising its failure, if any) and the second pass is
// awaited too, so that no pass runs when the next call is timed.
void BM_SerializeModelReturnsInBackground(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const auto model = buildModel(blocks);
    vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, 1);
    path directory;
    for (auto _ : state) {
        state.PauseTiming();
        directory = freshDirectory("velcg-bench-background");
        state.ResumeTiming();
        model->serializeModel(directory.wstring());
        state.PauseTiming();
        try {
            model->serializeModelAfterScriv(directory.wstring());
            model->waitForSerialization();
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
            break;
        }
        state.ResumeTiming();
    }
    std::filesystem::remove_all(directory);
}

void modelArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"blocks", "switch"});
    for (int level : {2, 4})
        for (int blocks : {0, 10'000, 100'000}) benchmark->Args({blocks, level});
}

BENCHMARK(BM_SerializeModel)
    ->Apply(modelArguments)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawSqliteWritesModelRows)
    ->Apply(modelArguments)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SerializeModelReturnsInBackground)
    ->ArgName("blocks")
    ->Arg(100'000)
    ->Iterations(5)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

// Every row of every table of a file, in key order, as text. Ends the
// process if the file cannot be read.
std::string allRows(const path& file) {
    sqlite3* db = nullptr;
    auto fail = [&](const char* what) {
        std::fprintf(stderr, "reading %s: %s: %s\n", file.c_str(), what, db ? sqlite3_errmsg(db) : "");
        std::exit(1);
    };
    if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) fail("open");
    std::vector<std::string> tables;
    sqlite3_stmt* list = nullptr;
    // "UnfinishedRun" marks a first pass whose second has not run yet: the
    // pass's bookkeeping, not rows of the model.
    if (sqlite3_prepare_v2(db,
                           "SELECT name FROM sqlite_schema WHERE type = 'table' AND name != 'UnfinishedRun' "
                           "ORDER BY name",
                           -1, &list, nullptr) != SQLITE_OK)
        fail("list the tables");
    while (sqlite3_step(list) == SQLITE_ROW)
        tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(list, 0)));
    sqlite3_finalize(list);
    std::string out;
    for (const std::string& table : tables) {
        out += table + "\n";
        sqlite3_stmt* rows = nullptr;
        if (sqlite3_prepare_v2(db, ("SELECT * FROM \"" + table + "\"").c_str(), -1, &rows, nullptr) !=
            SQLITE_OK)
            fail(table.c_str());
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

// The number of rows of a table of a file.
std::size_t countRows(const path& file, const std::string& table) {
    sqlite3* db = nullptr;
    sqlite3_stmt* count = nullptr;
    std::int64_t rows = -1;
    if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(db, ("SELECT count(*) FROM \"" + table + "\"").c_str(), -1, &count, nullptr) ==
            SQLITE_OK &&
        sqlite3_step(count) == SQLITE_ROW)
        rows = sqlite3_column_int64(count, 0);
    sqlite3_finalize(count);
    sqlite3_close(db);
    if (rows < 0) {
        std::fprintf(stderr, "reading %s: cannot count the rows of %s\n", file.c_str(), table.c_str());
        std::exit(1);
    }
    return static_cast<std::size_t>(rows);
}

// Reports the first line where two dumps differ.
bool sameRows(const std::string& what, const std::string& expected, const std::string& actual) {
    if (expected == actual) return true;
    std::size_t line = 1, at = 0;
    while (at < expected.size() && at < actual.size() && expected[at] == actual[at]) {
        if (expected[at] == '\n') ++line;
        ++at;
    }
    const auto lineAt = [](const std::string& text, std::size_t position) {
        const std::size_t begin = text.rfind('\n', position == 0 ? 0 : position - 1);
        const std::size_t from = begin == std::string::npos || position == 0 ? 0 : begin + 1;
        return text.substr(from, text.find('\n', from) - from);
    };
    std::fprintf(stderr, "%s: the rows differ at line %zu:\n  expected: %s\n  written:  %s\n", what.c_str(),
                 line, lineAt(expected, at).c_str(), lineAt(actual, at).c_str());
    return false;
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
    return sameRows("store writes", storeRows, rawRows) && storeRows.size() > 1000;
}

// serializeModel and the raw model writer leave the same rows at a switch
// value, and those rows have the shape described above.
bool modelWritersAgree(int level) {
    constexpr int kBlocks = 50;
    const std::string what = "model serialization at switch value " + std::to_string(level);
    const path directory = freshDirectory("velcg-bench-agree-model");
    {
        const auto model = buildModel(kBlocks);
        vel::feature::ScopedValue switchValue(VELFEAT_VelCGDirectEmitSerialize, level);
        model->serializeModel(directory.wstring());
    }
    const path serializedFile = directory / VelCG::CGModel::kCodeDescriptorFileName;
    const std::string serialized = allRows(serializedFile);
    const path rawFile = benchFile("velcg-bench-agree-raw-model.strata");
    createEmptyStore(rawFile);
    RawModelWriter(rawFile).write(kBlocks, level);
    const std::string raw = allRows(rawFile);
    std::filesystem::remove(rawFile);
    if (!sameRows(what, serialized, raw)) return false;

    // The rows are those of the intended model, not merely equal.
    const bool systems = level >= 4;
    const std::size_t blocks = kBlocks + (systems ? 1 : 0);
    const std::size_t ports = blocks * shape::kPortsPerBlock;
    const std::vector<std::pair<const char*, std::size_t>> expected = {
        {"Model", 1},
        {"GraphicalSystem_GraphicalBlocks", kBlocks},
        {"GraphicalBlock", blocks},
        {"GraphicalBlock_DataInputPorts", ports},
        {"Port", ports},
        {"Port_DataInterfaces", systems ? 0 : ports},
        {"DataInterface", systems ? 0 : ports},
        {"State_Dimensions", blocks * 2},
        {"BlockParameter_ModelParameters", blocks},
        {"ModelParameter_GraphicalReferencesSID", blocks * 2},
        {"System", systems ? shape::kSystems : 0},
        {"System_GraphicalCallSites", systems ? 1 : 0},
        {"Model_ExternalInputs", systems ? shape::kInputs : 0},
        {"IOMap", 1},
    };
    bool shaped = true;
    for (const auto& [table, rows] : expected) {
        const std::size_t found = countRows(serializedFile, table);
        if (found != rows) {
            std::fprintf(stderr, "%s: table %s holds %zu rows, not %zu\n", what.c_str(), table, found, rows);
            shaped = false;
        }
    }
    std::filesystem::remove_all(directory);
    return shaped;
}

} // namespace

int main(int argc, char** argv) {
    if (!writersAgree()) {
        std::fprintf(stderr, "the store and the raw SQLite writer leave different rows\n");
        return 1;
    }
    for (int level : {2, 4}) {
        bool agree = false;
        try {
            agree = modelWritersAgree(level);
        } catch (const std::exception& e) {
            std::fprintf(stderr, "model serialization at switch value %d failed: %s\n", level, e.what());
        }
        if (!agree) {
            std::fprintf(stderr, "serializeModel and the raw SQLite writer leave different rows\n");
            return 1;
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
