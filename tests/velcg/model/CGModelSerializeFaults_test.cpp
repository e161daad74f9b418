// Faults met while the model is serialized into the code descriptor store:
// a file or directory the process may not write, a full disk, passes of
// other models or runs, a script touching the model while a pass runs. Each
// is a diagnostic or a wait, never a race or a damaged store: the store
// holds the last pass committed before the fault, whole. (A process killed
// inside a pass's transaction leaves the last commit: Repository_test.cpp.)
#if !defined(_WIN32)

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <sqlite3.h>

#include "ChildProcess.hpp"
#include "DescriptorDump.hpp"
#include "DiagnosticTesting.hpp"
#include "StartLatch.hpp"
#include "StoreRows.hpp"
#include "TempDir.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/Features.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/Port.hpp"
#include "velcg/StoredCoderDataGroup.hpp"
#include "velcg/StoredGraphicalBlock.hpp"
#include "velcg/StoredGraphicalSubsystem.hpp"

using namespace VelCG;
using namespace testing_support;
namespace fs = std::filesystem;

namespace {

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
// subsystem, and two coder data groups named after it ("<name>_Signals",
// "<name>_States") that only the second pass writes.
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
    for (const char* group : {"_Signals", "_States"})
        model->appendCoderDataGroup(
            std::make_unique<StoredCoderDataGroup>(vel::i18n::toUtf8(name) + group, model.get()));
    return model;
}

fs::path storeIn(const fs::path& dir) { return dir / CGModel::kCodeDescriptorFileName; }

// Both passes, synchronously.
void serialize(NamedModel& model, const fs::path& dir) {
    vel::feature::ScopedValue synchronous(VELFEAT_VelCGDirectEmitSerialize, 2);
    model.serializeModel(dir.wstring());
    model.serializeModelAfterScriv(dir.wstring());
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
        EXPECT_EQ(expected, runInChild(setup,
                                       [&] {
                                           return testing_support::diagnosticTextOf(
                                               [&] { serialize(*later, dir.path()); });
                                       }))
            << r.fault;
        fs::permissions(dir.path(), fs::perms::owner_all);
        // Opened for writing, which replays a journal a dead writer left.
        EXPECT_TRUE(coder::Repository(store).checkIntegrity().empty()) << r.fault;
        EXPECT_EQ(before, dumpOf(store)) << r.fault;
    }
}

// A second pass adds to the description only while the store holds the
// token its own model's last first pass left there. Finding another (of
// another model, another run of the same model, a later first pass of this
// model elsewhere) or none (a second pass already ran, or this model ran no
// first pass), it raises DescriptorOfAnotherRun naming both and leaves the
// file as it was.
TEST(CGModelSerializeFaults, ASecondPassAddsOnlyToItsOwnFirstPass) {
    vel::feature::ScopedValue synchronous(VELFEAT_VelCGDirectEmitSerialize, 2);
    // Steps "<model><pass>", "@" writing into another directory; the last
    // fails. Model c is another object named "a". "{i}" is the token that
    // step i left in its directory.
    struct Case {
        std::vector<std::string> steps;
        std::string own, held;
    } cases[] = {
        {{"a1", "b1", "a2"}, "run {0}", "model 'b' of run {1}"},
        {{"a1", "c1", "a2"}, "run {0}", "model 'a' of run {1}"},
        {{"a1", "a1@", "a2"}, "run {1}", "model 'a' of run {0}"},
        {{"a1", "a2", "a2"}, "run {0}", "model 'a' with no second pass outstanding"},
        {{"a1", "c2"}, "no first pass run", "model 'a' of run {0}"},
    };
    for (const Case& c : cases) {
        TempDir dir, elsewhere;
        const std::unique_ptr<NamedModel> models[] = {buildModel(L"a", 1), buildModel(L"b", 1),
                                                      buildModel(L"a", 1)};
        std::vector<std::string> tokens;
        const auto run = [&](const std::string& step) {
            const fs::path in = step.size() > 2 ? elsewhere.path() : dir.path();
            NamedModel& model = *models[step[0] - 'a'];
            step[1] == '1' ? model.serializeModel(in.wstring())
                           : model.serializeModelAfterScriv(in.wstring());
            tokens.push_back(coder::Repository(storeIn(in), {coder::RepositoryOptions::Access::ReadOnly})
                                 .getUnfinishedRun());
        };
        for (std::size_t i = 0; i + 1 < c.steps.size(); ++i) run(c.steps[i]);
        std::string expected = "VelCG:Model:DescriptorOfAnotherRun(a, " + c.own + ", " +
                               storeIn(dir.path()).string() + ", " + c.held + ")";
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            const std::string mark = "{" + std::to_string(i) + "}";
            if (expected.find(mark) != std::string::npos) expected.replace(expected.find(mark), 3, tokens[i]);
        }
        const std::string before = testing_support::fileBytes(storeIn(dir.path()));
        EXPECT_EQ(expected, testing_support::diagnosticWithArgumentsOf([&] { run(c.steps.back()); }));
        EXPECT_EQ(before, testing_support::fileBytes(storeIn(dir.path())));
    }
}

// Two models generating into one directory at once, again and again: the
// store ends with the model whose first pass came last and its groups,
// once; the other model's second pass completed before that first pass, or
// raised DescriptorOfAnotherRun and added nothing.
TEST(CGModelSerializeFaults, TwoGenerationsIntoOneDirectoryNeverMix) {
    vel::feature::ScopedValue synchronous(VELFEAT_VelCGDirectEmitSerialize, 2);
    for (int round = 0; round < 20; ++round) {
        TempDir dir;
        const std::unique_ptr<NamedModel> models[] = {buildModel(L"a", 20), buildModel(L"b", 20)};
        std::string failures[2];
        testing_support::StartLatch start(2);
        const auto generate = [&](int i) {
            start.arriveAndWait();
            failures[i] = testing_support::diagnosticTextOf([&] {
                models[i]->serializeModel(dir.path().wstring());
                models[i]->serializeModelAfterScriv(dir.path().wstring());
            });
        };
        std::thread other(generate, 1);
        generate(0);
        other.join();

        coder::Repository repository(storeIn(dir.path()), {coder::RepositoryOptions::Access::ReadOnly});
        const auto model = coder::descriptor::RepositoryHelper::getModel(repository);
        const std::string name = vel::i18n::toUtf8(model.getModelName());
        std::string groups;
        for (const auto& group : model.getCoderGroups()) groups += vel::i18n::toUtf8(group.getName()) + " ";
        EXPECT_EQ(name + "_Signals " + name + "_States ", groups) << "round " << round;
        for (int i = 0; i < 2; ++i) {
            const bool stored = name == (i == 0 ? "a" : "b");
            EXPECT_TRUE(failures[i] == "no diagnostic" ||
                        (!stored && failures[i].rfind(messages::Model::DescriptorOfAnotherRun, 0) == 0))
                << "round " << round << ", model " << i << ": " << failures[i];
        }
    }
}

// A script that runs while the first pass does (the usual order) writes to
// the model only after the pass ends: the pass neither races with the
// script's writes nor describes them.
TEST(CGModelSerializeFaults, ScriptWritesWaitForABackgroundPass) {
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
    ASSERT_NE(0, CGModel::runningBackgroundPasses());
    std::thread release([lock] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        sqlite3_exec(lock, "COMMIT", nullptr, nullptr, nullptr);
    });
    const korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    client.setProperty(model->makeRef(), "SharedCodeManagerPath", *tuvArray::fromUtf8("/after"));
    EXPECT_EQ(0, CGModel::runningBackgroundPasses()) << "the write went ahead of the pass";
    release.join();
    sqlite3_close(lock);
    model->waitForSerialization();
    const std::string dump = dumpOf(storeIn(dir.path()));
    EXPECT_NE(std::string::npos, dump.find("waiting")) << dump;
    EXPECT_EQ(std::string::npos, dump.find("/after")) << dump;
}

#endif
