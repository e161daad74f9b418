// Faults met while the model is serialized into the code descriptor store:
// a file or directory the process may not write, a full disk, a process
// killed during a pass, a script touching the model while a pass runs. Each
// is a diagnostic, a dead process or a wait, never a race or a
// damaged store: the store holds the last pass committed before the fault,
// whole.
#if !defined(_WIN32)

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <sqlite3.h>

#include "ChildProcess.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Dump.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CoderDataGroup.hpp"
#include "velcg/Features.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/Port.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"

using namespace VelCG;
using testing_support::ChildSetup;
using testing_support::runInChild;
using testing_support::TempDir;
namespace fs = std::filesystem;

namespace {

struct Group : CoderDataGroup {
    using CoderDataGroup::CoderDataGroup;
    void WriteToBriskFile() const override {}
};

class NamedModel : public CGModel {
public:
    explicit NamedModel(std::wstring name) : name_(std::move(name)) {}
    ~NamedModel() override { waitForSerialization(); }
    std::wstring getName() const override { return name_; }
    using CGModel::waitForSerialization;

private:
    std::wstring name_;
};

// A model of `blocks` blocks with one input port each, in one root
// subsystem, and two coder data groups that only the second pass writes.
std::unique_ptr<NamedModel> buildModel(const wchar_t* name, int blocks) {
    auto model = std::make_unique<NamedModel>(name);
    auto root = std::make_unique<StoredGraphicalSubsystem>(name, GraphicalSubsystemType::Root);
    for (int i = 0; i < blocks; ++i) {
        auto* block = new StoredGraphicalBlock(L"Gain" + std::to_wstring(i));
        block->setCGModel(model.get());
        block->addDataInputPort(std::make_unique<Port>())->setCGModel(model.get());
        root->addGraphicalBlock(std::make_unique<GraphicalBlock>(block));
    }
    model->getBlockHierarchyMap()->addGraphicalSubsystem(std::move(root));
    for (const char* group : {"Signals", "States"})
        model->appendCoderDataGroup(std::make_unique<Group>(group, model.get()));
    return model;
}

fs::path storeIn(const fs::path& dir) { return dir / CGModel::kCodeDescriptorFileName; }

// Both passes, synchronously.
void serialize(NamedModel& model, const fs::path& dir) {
    vel::feature::ScopedValue synchronous(VELFEAT_VelCGDirectEmitSerialize, 2);
    model.serializeModel(dir.wstring());
    model.serializeModelAfterScriv(dir.wstring());
}

// The rows of every table of the store, "table rows" a line. A pass writes
// all its rows or none, so this tells a complete pass from a partial one.
std::string rowCounts(const fs::path& store) {
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

// Opens the store for writing (which replays a journal a dead writer left)
// and returns its integrity problems, one a line.
std::string integrityProblems(const fs::path& store) {
    std::string out;
    for (const std::string& problem : coder::Repository(store).checkIntegrity()) out += problem + "\n";
    return out;
}

std::string dumpOf(const fs::path& store) {
    coder::Repository repository(store, {coder::RepositoryOptions::Access::ReadOnly});
    return coder::descriptor::dumpText(repository);
}

// The diagnostic f raises, as what() renders it, or "no diagnostic".
template <class F>
std::string failureOf(F&& f) {
    try {
        f();
    } catch (const vel::diag::Exception& e) {
        return e.what();
    }
    return "no diagnostic";
}

} // namespace

// Each fault raises its diagnostic from the pass, saying what the system
// refused; the store keeps the model of the earlier passes.
TEST(CGModelSerializeFaults, AStoreThatCannotBeWrittenRaisesAndKeepsTheEarlierPasses) {
    const auto earlier = buildModel(L"earlier", 3);
    const auto later = buildModel(L"later", 2000);
    const auto readOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    const auto readAndSearch =
        readOnly | fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    struct Row {
        const char* fault;
        fs::perms filePermissions;
        fs::perms directoryPermissions;
        bool unprivileged;
        bool limitFileSize; // to a little more than the store's size
        std::string expected;
    } rows[] = {
        {"a write-protected file", readOnly, fs::perms::all, true, false,
         "coder:Repository:ReadOnly: Cannot write the code descriptor '{}': the file cannot be opened for "
         "writing"},
        {"a write-protected directory", fs::perms::all, readAndSearch, true, false,
         "coder:Repository:ReadOnly: Cannot write the code descriptor '{}': attempt to write a readonly "
         "database (the directory does not let the journal be created)"},
        {"a full disk", fs::perms::all, fs::perms::all, false, true,
         "coder:Repository:Full: The code descriptor '{}' cannot grow: disk I/O error (" +
             std::string(std::strerror(EFBIG)) + "). The transaction was rolled back."},
    };
    for (const Row& r : rows) {
        TempDir dir;
        const fs::path store = storeIn(dir.path());
        serialize(*earlier, dir.path());
        const std::string before = dumpOf(store);
        ChildSetup setup{r.unprivileged, std::nullopt};
        if (r.limitFileSize) setup.fileSizeLimit = fs::file_size(store) + 8192;
        fs::permissions(store, r.filePermissions);
        fs::permissions(dir.path(), r.directoryPermissions);
        std::string expected = r.expected;
        expected.replace(expected.find("{}"), 2, store.string());
        EXPECT_EQ(expected,
                  runInChild(setup, [&] { return failureOf([&] { serialize(*later, dir.path()); }); }))
            << r.fault;
        fs::permissions(dir.path(), fs::perms::owner_all);
        EXPECT_EQ("", integrityProblems(store)) << r.fault;
        EXPECT_EQ(before, dumpOf(store)) << r.fault;
    }
}

// A process killed at any point of either pass, in the foreground or in the
// background, leaves the store as the earlier passes left it, or with the
// new first pass, or with both new passes: never part of a pass.
TEST(CGModelSerializeFaults, AProcessKilledDuringAPassLeavesWholePasses) {
    const auto model = buildModel(L"large", 20000);
    TempDir reference;
    serialize(*buildModel(L"earlier", 3), reference.path());
    const std::string earlierRows = rowCounts(storeIn(reference.path()));
    const fs::path earlierStore = reference / "earlier.strata";
    fs::copy_file(storeIn(reference.path()), earlierStore);
    std::string firstPassRows, bothPassesRows;
    {
        vel::feature::ScopedValue synchronous(VELFEAT_VelCGDirectEmitSerialize, 2);
        model->serializeModel(reference.path().wstring());
        firstPassRows = rowCounts(storeIn(reference.path()));
        model->serializeModelAfterScriv(reference.path().wstring());
        bothPassesRows = rowCounts(storeIn(reference.path()));
    }
    ASSERT_NE(earlierRows, firstPassRows);
    ASSERT_NE(firstPassRows, bothPassesRows);

    // First right after each synchronous pass has returned, timing the
    // passes in a child; then after delays spread over that time and a
    // little past it (the time varies), at both switch values.
    struct Kill {
        int level;
        int passesReturned; // the passes the child reported done, or
        double fraction;    // of the time both passes took
    };
    std::vector<Kill> kills = {{2, 1, 0}, {2, 2, 0}};
    int switchValue = 1;
    for (double fraction : {0.3, 0.6, 0.9, 1.0, 1.1, 1.25})
        kills.push_back({switchValue = 3 - switchValue, 0, fraction});
    using Clock = std::chrono::steady_clock;
    Clock::duration passesTime{};
    for (const Kill& k : kills) {
        TempDir dir;
        fs::copy_file(earlierStore, storeIn(dir.path()));
        int done[2];
        ASSERT_EQ(0, pipe(done));
        const Clock::time_point started = Clock::now();
        const pid_t child = testing_support::startChild({}, [&] {
            vel::feature::ScopedValue level(VELFEAT_VelCGDirectEmitSerialize, k.level);
            model->serializeModel(dir.path().wstring());
            if (write(done[1], "1", 1) != 1) return;
            model->serializeModelAfterScriv(dir.path().wstring());
            model->waitForSerialization();
            if (write(done[1], "2", 1) != 1) return;
            pause();
        });
        close(done[1]);
        if (k.passesReturned == 0) {
            std::this_thread::sleep_for(passesTime * k.fraction);
        } else {
            char marker;
            for (int passes = 0; passes < k.passesReturned; ++passes) ASSERT_EQ(1, read(done[0], &marker, 1));
            passesTime = Clock::now() - started;
        }
        kill(child, SIGKILL);
        close(done[0]);
        EXPECT_EQ("signal 9", testing_support::waitForChild(child));

        const std::string trace = "level " + std::to_string(k.level) + ", killed after " +
                                  (k.passesReturned ? std::to_string(k.passesReturned) + " pass(es)"
                                                    : std::to_string(k.fraction) + " of the passes' time");
        EXPECT_EQ("", integrityProblems(storeIn(dir.path()))) << trace;
        const std::string rows = rowCounts(storeIn(dir.path()));
        const std::set<std::string> whole =
            k.passesReturned == 2   ? std::set<std::string>{bothPassesRows}
            : k.passesReturned == 1 ? std::set<std::string>{firstPassRows, bothPassesRows}
                                    : std::set<std::string>{earlierRows, firstPassRows, bothPassesRows};
        EXPECT_EQ(1u, whole.count(rows)) << trace << "; the store holds:\n" << rows;
    }
}

// A script that runs while the first pass does (the usual order) reaches the
// model only after the pass ends: the pass neither races with the script's
// writes nor describes them.
TEST(CGModelSerializeFaults, ScriptsWaitForABackgroundPassBeforeTouchingTheModel) {
    PlexoInitialize_velcg();
    TempDir dir;
    const auto model = buildModel(L"waiting", 200);
    // The pass waits for the store's write lock, held here until the
    // script has had time to start its write.
    sqlite3* lock = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(storeIn(dir.path()).c_str(), &lock));
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(lock, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr));
    {
        vel::feature::ScopedValue background(VELFEAT_VelCGDirectEmitSerialize, 1);
        model->serializeModel(dir.path().wstring());
    }
    ASSERT_NE(0, CGModel::runningBackgroundPasses().load());
    std::thread release([lock] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        sqlite3_exec(lock, "COMMIT", nullptr, nullptr, nullptr);
    });
    const korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    client.setProperty(model->makeRef(), "SharedCodeManagerPath", *tuvArray::fromUtf8("/after"));
    EXPECT_EQ(0, CGModel::runningBackgroundPasses().load()) << "the write went ahead of the pass";
    release.join();
    sqlite3_close(lock);
    model->waitForSerialization();
    const std::string dump = dumpOf(storeIn(dir.path()));
    EXPECT_NE(std::string::npos, dump.find("waiting")) << dump;
    EXPECT_EQ(std::string::npos, dump.find("/after")) << dump;
}

#endif
