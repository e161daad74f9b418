// velcg-descriptor run as a process on stores written here: whole outputs,
// exit statuses, and files left as they were.
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "StoreRows.hpp"
#include "TempDir.hpp"
#include "ToolProcess.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "coder/descriptor/Dump.hpp"

namespace {

using coder::Repository;
using coder::Transaction;
using namespace coder::descriptor;
using testing_support::execSql;
using testing_support::fileBytes;
using testing_support::TempDir;
using testing_support::ToolRun;
using testing_support::writeBytes;

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// A small model with every kind of JSON value: texts with a quote, control
// characters and non-ASCII UTF-8 (two and four bytes), an absent optional
// field, set and unset references, a reference cycle, integer and real edge
// values (one not finite), and empty and non-empty sequences of records,
// integers and texts.
void writeSmallModel(Repository& repository) {
    Transaction transaction(repository);
    ModelCreator modelCreator(repository);
    modelCreator.setModelName(u"demo");
    modelCreator.setKordelVersion(u"1.0");
    Model model = modelCreator.createModel();

    BlockHierarchyMap map = BlockHierarchyMapCreator(repository).createBlockHierarchyMap();
    model.setBlockHierarchyMap(map);
    GraphicalSystemCreator systemCreator(repository);
    systemCreator.setName(u"demo");
    GraphicalSystem root = systemCreator.createGraphicalSystem();
    map.getGraphicalSystems().append(root);

    GraphicalBlockCreator gainCreator(repository);
    gainCreator.setGraphicalName(u"Gain \"K\" \u00b5\U0001D11E");
    gainCreator.setName(u"Gain");
    gainCreator.setDescription(u"line\tone\nline two\\");
    gainCreator.setNumFcnCallOutputPorts(-1);
    gainCreator.setParentSystemSID(u"demo:0");
    GraphicalBlock gain = gainCreator.createGraphicalBlock();
    root.getGraphicalBlocks().append(gain);

    DataInterfaceCreator dataInterface(repository);
    dataInterface.setIdentifier(u"demo_signals.u");
    PortCreator portCreator(repository);
    portCreator.setGraphicalName(u"Out1");
    portCreator.setConnected(true);
    Port output = portCreator.createPort();
    portCreator.setGraphicalName(u"In1");
    Port input = portCreator.createPort();
    input.setGraphicalSource(output);
    input.getDataInterfaces().append(dataInterface.createDataInterface());
    dataInterface.setIdentifier(u"demo_signals.v");
    input.getDataInterfaces().append(dataInterface.createDataInterface());
    gain.getDataInputPorts().append(input);
    Port trigger = PortCreator(repository).createPort();
    trigger.setGraphicalSource(trigger);
    gain.getControlInputPorts().append(trigger);

    ToAsyncQueueBlockCreator queue(repository);
    queue.setIsEnum(true);
    queue.setFxpSignedness(std::numeric_limits<std::uint32_t>::max());
    queue.setFxpSlopeAdjFactor(0.25);
    queue.setFxpBias(-std::numeric_limits<double>::infinity());
    queue.setSignalSourceUUIDasInteger(std::numeric_limits<std::int64_t>::min());
    ToAsyncQueueBlock queued = queue.createToAsyncQueueBlock();
    queued.getEnumLabels().append(StringListElement(u"Off"));
    queued.getEnumValues().append(IntegerArrayElement(-1));
    model.getTAQBlocks().append(queued);

    // No record refers to a region; it is stored but not part of the dump.
    RegionCreator(repository).createRegion().getDimensions().append(IntegerArrayElement(1));
    transaction.commit();
}


const std::string kUsage =
    "usage: velcg-descriptor dump [--json] FILE\n"
    "       velcg-descriptor check FILE\n"
    "       velcg-descriptor --help | --version\n";

class DescriptorTool : public ::testing::Test {
protected:
    DescriptorTool() {
        Repository repository(store_);
        writeSmallModel(repository);
    }

    // The tool's arguments with "{F}" standing for file.
    ToolRun run(std::vector<std::string> args, const std::filesystem::path& file,
                const testing_support::ChildSetup& setup = {}) {
        for (std::string& arg : args) arg = replaceAll(arg, "{F}", file.string());
        return testing_support::runTool(VELCG_DESCRIPTOR_TOOL, dir_.path(), args, setup);
    }

    TempDir dir_;
    const std::filesystem::path store_ = dir_ / "codedescriptor.strata";
    // The JSON dump of writeSmallModel's model.
    const std::string expectedJson_ =
        fileBytes(std::filesystem::path(__FILE__).replace_filename("DescriptorTool_demo.json"));
};

// The commands print their whole result, also after the model was written
// a second time into the same file, and leave the file as it was.
TEST_F(DescriptorTool, CommandsPrintTheirWholeResult) {
    struct Case {
        std::vector<std::string> args;
        std::string expected; // "{F}" stands for the file
    };
    // The text form is the store's own dumpText, whose layout its tests
    // pin; the tool must print exactly that.
    const std::string expectedText = [&] {
        Repository repository(store_, {coder::RepositoryOptions::Access::ReadOnly});
        return dumpText(repository);
    }();
    ASSERT_EQ(0u, expectedText.rfind("Model\n  ModelName: \"demo\"\n", 0));
    const Case cases[] = {
        {{"dump", "{F}"}, expectedText},
        {{"dump", "--json", "{F}"}, expectedJson_},
        {{"dump", "{F}", "--json"}, expectedJson_},
        {{"check", "{F}"}, "{F}: ok\n"},
    };
    for (int writes : {1, 2}) {
        if (writes == 2) {
            Repository repository(store_);
            writeSmallModel(repository);
        }
        const std::string before = fileBytes(store_);
        for (const Case& c : cases) {
            SCOPED_TRACE(std::to_string(writes) + " write(s), " + c.args[0] + " " + c.args[1]);
            const ToolRun result = run(c.args, store_);
            EXPECT_EQ(replaceAll(c.expected, "{F}", store_.string()), result.out);
            EXPECT_EQ("", result.err);
            EXPECT_EQ(0, result.status);
        }
        EXPECT_EQ(before, fileBytes(store_));
    }
}

// Files that are not sound stores: the command names the problem on
// standard error, prints nothing else, exits with 1 and leaves the file as
// it was (a missing file is not created). Which files the store refuses is
// pinned by its own tests; these are the ways the tool comes to report.
TEST_F(DescriptorTool, BadFilesGiveAReadableError) {
    using std::filesystem::path;
    using Args = std::vector<std::string>;
    const Args check{"check", "{F}"}, dump{"dump", "{F}"}, json{"dump", "--json", "{F}"};
    const std::string good = fileBytes(store_);
    const std::size_t pages = good.size() / 4096;
    ASSERT_EQ(good.size(), pages * 4096);
    const auto copyWith = [&good](const std::string& sql) {
        return [&good, sql](const path& file) {
            writeBytes(file, good);
            execSql(file, sql);
        };
    };
    // Removes the first of the two data interfaces of the port "In1".
    const auto gap = copyWith(
        "DELETE FROM Port_DataInterfaces WHERE position = 0 AND owner = "
        "(SELECT id FROM Port WHERE GraphicalName = 'In1')");
    const std::string gapError =
        "velcg-descriptor: error: {F}: The code descriptor '{F}' is damaged: the positions of "
        "Port.DataInterfaces of record 2 "
        "are not 0, 1, 2, ... [coder:descriptor:BrokenSequence]\n";

    struct Case {
        const char* name;
        std::function<void(const path&)> make;
        std::vector<Args> commands;
        std::string expected; // standard error; "{F}" stands for the file
    };
    const Case cases[] = {
        {"empty file",
         [](const path& file) { writeBytes(file, ""); },
         {dump},
         "velcg-descriptor: error: {F}: '{F}' is not a code descriptor store; it was left unchanged. "
         "[coder:Repository:NotAStore]\n"},
        {"one byte short",
         [&good](const path& file) { writeBytes(file, good.substr(0, good.size() - 1)); },
         {check},
         "velcg-descriptor: error: {F}: The code descriptor '{F}' is damaged: the file is " +
             std::to_string(good.size() - 1) + " bytes long, but holds " + std::to_string(pages) +
             " pages of 4096 bytes [coder:Repository:Corrupt]\n"},
        {"newer format",
         copyWith("PRAGMA user_version = 3"),
         {check},
         "velcg-descriptor: error: {F}: The code descriptor '{F}' has format version 3, newer than version 2 "
         "that this program "
         "reads; it was left unchanged. [coder:Repository:NewerFormat]\n"},
        {"gap in positions",
         gap,
         {check},
         "velcg-descriptor: error: {F}: table 'Port_DataInterfaces': owner 2 has positions other than 0, 1, "
         "2, ...\n"},
        {"gap in positions", gap, {dump, json}, gapError},
        {"missing record",
         copyWith("DELETE FROM DataInterface WHERE Identifier = 'demo_signals.v'"),
         {json},
         "velcg-descriptor: error: {F}: The code descriptor '{F}' has no DataInterface record 2. "
         "[coder:descriptor:MissingRecord]\n"},
        {"missing file",
         [](const path&) {},
         {check},
         "velcg-descriptor: error: {F}: Cannot open the code descriptor '{F}': unable to open database file "
         "[coder:Repository:CannotOpen]\n"},
        {"no model",
         [](const path& file) { Repository repository(file); },
         {check, dump, json},
         "velcg-descriptor: error: {F}: The code descriptor '{F}' holds no model. "
         "[coder:descriptor:NoModel]\n"},
        {"sources nested too deep",
         // Out1 gets a chain of 600 sources.
         copyWith(
             "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 600) "
             "INSERT INTO Port (id, GraphicalSource) SELECT 1000 + i, IIF(i < 600, 1001 + i, NULL) FROM n; "
             "UPDATE Port SET GraphicalSource = 1001 WHERE GraphicalName = 'Out1'"),
         {check, dump, json},
         "velcg-descriptor: error: {F}: The records nest more than 512 levels deep. "
         "[coder:descriptor:TooDeep]\n"},
    };
    int index = 0;
    for (const Case& c : cases) {
        for (const Args& args : c.commands) {
            const path file = dir_ / ("bad" + std::to_string(index++) + ".strata");
            c.make(file);
            SCOPED_TRACE(std::string(c.name) + ": " + args[0] + " " + args[1]);
            const bool existed = std::filesystem::exists(file);
            const std::string before = fileBytes(file);
            const ToolRun result = run(args, file);
            EXPECT_EQ(replaceAll(c.expected, "{F}", file.string()), result.err);
            EXPECT_EQ("", result.out);
            EXPECT_EQ(1, result.status);
            EXPECT_EQ(existed, std::filesystem::exists(file));
            EXPECT_EQ(before, fileBytes(file));
        }
    }
}

// A store left by a writer that stopped mid-transaction: refused as it is,
// with what to run, where the tool may not write the file and its
// directory; rolled back to its last commit, with a warning, where it may.
TEST_F(DescriptorTool, AStoreLeftMidWriteIsRefusedOrRolledBack) {
    namespace fs = std::filesystem;
    const fs::path dir = dir_ / "left", store = dir / "codedescriptor.strata";
    fs::create_directory(dir);
    fs::copy_file(store_, store);
    const std::string committed = fileBytes(store);
    // A writer whose transaction spills into the file at once (a cache of
    // one page), ended without a rollback.
    testing_support::waitForChild(testing_support::startChild({}, [&] {
        sqlite3* db = nullptr;
        sqlite3_open(store.c_str(), &db);
        sqlite3_exec(
            db,
            "PRAGMA cache_size = 1; BEGIN; CREATE TABLE pad (x); INSERT INTO pad VALUES (zeroblob(100000))",
            nullptr, nullptr, nullptr);
    }));
    const std::string left = fileBytes(store);
    ASSERT_NE(committed, left) << "the transaction did not reach the file";

    const auto readOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    fs::permissions(store, readOnly);
    fs::permissions(dir, readOnly | fs::perms::owner_exec | fs::perms::others_exec);
    ToolRun result = run({"check", "{F}"}, store, testing_support::unprivileged());
    EXPECT_EQ(
        replaceAll("velcg-descriptor: error: {F}: The code descriptor '{F}' was left by a writer that "
                   "stopped in the middle of "
                   "a transaction, which must be rolled back before the file can be read, and here it "
                   "cannot be: this process may not write the file. Nothing committed is lost: run "
                   "'velcg-descriptor check {F}' as a user that may write the file and its directory, or "
                   "open the file once for writing. [coder:Repository:LeftMidWrite]\n",
                   "{F}", store.string()),
        result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(left, fileBytes(store));

    fs::permissions(dir, fs::perms::owner_all);
    fs::permissions(store, fs::perms::owner_all);
    result = run({"dump", "--json", "{F}"}, store);
    EXPECT_EQ(replaceAll("velcg-descriptor: warning: {F}: The code descriptor '{F}' was left by a writer "
                         "that stopped; its "
                         "unfinished transaction was rolled back. [coder:Repository:RolledBack]\n",
                         "{F}", store.string()),
              result.err);
    EXPECT_EQ(expectedJson_, result.out);
    EXPECT_EQ(committed, fileBytes(store));
}

TEST_F(DescriptorTool, UsageErrorsExitWithTwo) {
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string err;
    };
    const Case cases[] = {
        {{"--help"}, 0, ""},
        {{"dump", "--help"}, 0, ""},
        {{}, 2, kUsage},
        {{"dump"}, 2, kUsage},
        {{"dump", "{F}", "{F}"}, 2, kUsage},
        {{"dump", "--xml", "{F}"}, 2, kUsage},
        {{"check", "--json", "{F}"}, 2, kUsage},
        {{"list", "{F}"}, 2, kUsage},
        {{"--json", "dump", "{F}"}, 2, kUsage},
    };
    for (const Case& c : cases) {
        std::string shown;
        for (const std::string& arg : c.args) shown += " " + arg;
        SCOPED_TRACE("velcg-descriptor" + shown);
        const ToolRun result = run(c.args, store_);
        // A usage error says what is wrong, then shows the usage.
        if (c.status == 2) {
            EXPECT_EQ(0u, result.err.rfind("velcg-descriptor: error: ", 0)) << result.err;
            EXPECT_TRUE(result.err.size() > kUsage.size() &&
                        result.err.compare(result.err.size() - kUsage.size(), kUsage.size(), kUsage) == 0)
                << result.err;
        } else {
            EXPECT_EQ("", result.err);
        }
        EXPECT_EQ(c.status, result.status);
        // Help is the usage and what each command does, on standard output.
        if (c.status == 0) {
            EXPECT_EQ(0u, result.out.rfind(std::string(kUsage) + "\n", 0)) << result.out;
            for (const char* command : {"\n  dump FILE ", "\n  dump --json FILE ", "\n  check FILE "})
                EXPECT_NE(std::string::npos, result.out.find(command)) << command;
        } else {
            EXPECT_EQ("", result.out);
        }
    }
}

// A file name that starts with a dash is read after "--".
TEST_F(DescriptorTool, FileNamesMayStartWithADash) {
    const std::filesystem::path dashed = dir_ / "-model.strata";
    std::filesystem::copy_file(store_, dashed);
    const std::filesystem::path cwd = std::filesystem::current_path();
    std::filesystem::current_path(dir_.path());
    const ToolRun result =
        testing_support::runTool(VELCG_DESCRIPTOR_TOOL, dir_.path(), {"check", "--", "-model.strata"});
    std::filesystem::current_path(cwd);
    EXPECT_EQ("-model.strata: ok\n", result.out);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

} // namespace
