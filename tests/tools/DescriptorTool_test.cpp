// velcg-descriptor run as a process on stores written here: whole outputs,
// exit statuses, and files left as they were.
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "DescriptorModels.hpp"
#include "ExpectedFile.hpp"
#include "StoreRows.hpp"
#include "TempDir.hpp"
#include "ToolProcess.hpp"

namespace {

using coder::Repository;
using namespace testing_support;

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

class DescriptorTool : public ::testing::Test {
protected:
    DescriptorTool() {
        Repository repository(store_);
        testing_support::writeValueShapesModel(repository);
    }

    // The tool's arguments with "{F}" standing for file.
    ToolRun run(std::vector<std::string> args, const std::filesystem::path& file,
                const testing_support::ChildSetup& setup = {}) {
        for (std::string& arg : args) arg = replaceAll(arg, "{F}", file.string());
        return testing_support::runTool(VELCG_DESCRIPTOR_TOOL, dir_.path(), args, setup);
    }

    TempDir dir_;
    const std::filesystem::path store_ = dir_ / "codedescriptor.strata";
    // The dumps of the store, checked in with the model.
    const std::filesystem::path shapes_ = testing_support::besideSource(__FILE__, "../support");
    const std::string expectedText_ = fileBytes(shapes_ / "value_shapes.dump.txt");
    const std::string expectedJson_ = fileBytes(shapes_ / "value_shapes.dump.json");
};

// The commands print their whole result, also after the model was written
// a second time into the same file, and leave the file as it was.
TEST_F(DescriptorTool, CommandsPrintTheirWholeResult) {
    struct Case {
        std::vector<std::string> args;
        std::string expected; // "{F}" stands for the file
    };
    ASSERT_FALSE(expectedText_.empty() || expectedJson_.empty());
    const Case cases[] = {
        {{"dump", "{F}"}, expectedText_},
        {{"dump", "--json", "{F}"}, expectedJson_},
        {{"dump", "{F}", "--json"}, expectedJson_},
        {{"check", "{F}"}, "{F}: ok\n"},
    };
    for (int writes : {1, 2}) {
        if (writes == 2) {
            Repository repository(store_);
            testing_support::writeValueShapesModel(repository);
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
// standard error (DescriptorTool_bad_files.txt, "{F}" standing for the
// file), prints nothing else, exits with 1 and leaves the file as it was (a
// missing file is not created). Which files the store refuses is pinned by
// its own tests; these are the ways the tool comes to report.
TEST_F(DescriptorTool, BadFilesGiveAReadableError) {
    using std::filesystem::path;
    using Args = std::vector<std::string>;
    const Args check{"check", "{F}"}, dump{"dump", "{F}"}, json{"dump", "--json", "{F}"};
    const std::string good = fileBytes(store_);
    ASSERT_EQ(0u, good.size() % 4096);
    // The size of a store one byte short, as the refusal names it.
    const std::string shortSize = " " + std::to_string(good.size() - 1) + " bytes long, but holds " +
                                  std::to_string(good.size() / 4096) + " pages ";
    const auto copyWith = [&good](const std::string& sql) {
        return [&good, sql](const path& file) {
            writeBytes(file, good);
            execSql(file, sql);
        };
    };
    const struct {
        const char* name;
        std::function<void(const path&)> make;
        std::vector<Args> commands;
    } cases[] = {
        {"empty file", [](const path& file) { writeBytes(file, ""); }, {dump}},
        {"one byte short",
         [&good](const path& file) { writeBytes(file, good.substr(0, good.size() - 1)); },
         {check}},
        {"newer format", copyWith("PRAGMA user_version = 3"), {check}},
        // Removes the first of the two data interfaces of the port "In1".
        {"gap in positions",
         copyWith("DELETE FROM Port_DataInterfaces WHERE position = 0 AND owner = "
                  "(SELECT id FROM Port WHERE GraphicalName = 'In1')"),
         {check, dump, json}},
        {"missing record", copyWith("DELETE FROM DataInterface WHERE Identifier = 'demo_signals.v'"), {json}},
        {"missing file", [](const path&) {}, {check}},
        {"no model", [](const path& file) { Repository repository(file); }, {check, dump, json}},
        {"sources nested too deep",
         // Out1 gets a chain of 600 sources.
         copyWith(
             "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 600) "
             "INSERT INTO Port (id, GraphicalSource) SELECT 1000 + i, IIF(i < 600, 1001 + i, NULL) FROM n; "
             "UPDATE Port SET GraphicalSource = 1001 WHERE GraphicalName = 'Out1'"),
         {check, dump, json}},
    };
    std::string transcript;
    int index = 0;
    for (const auto& c : cases) {
        for (const Args& args : c.commands) {
            const path file = dir_ / ("bad" + std::to_string(index++) + ".strata");
            c.make(file);
            const bool existed = std::filesystem::exists(file);
            const std::string before = fileBytes(file);
            const ToolRun result = run(args, file);
            transcript += c.name + std::string(":");
            for (const std::string& arg : args) transcript += " " + arg;
            transcript += " -> exit " + std::to_string(result.status) + "\n" +
                          replaceAll(replaceAll(result.err, file.string(), "{F}"), shortSize,
                                     " {size} bytes long, but holds {pages} pages ");
            EXPECT_EQ("", result.out) << c.name;
            EXPECT_EQ(existed, std::filesystem::exists(file)) << c.name;
            EXPECT_EQ(before, fileBytes(file)) << c.name;
        }
    }
    EXPECT_MATCHES_FILE(transcript, __FILE__, "DescriptorTool_bad_files.txt");
}

// A store left by a writer that stopped mid-transaction is rolled back to
// its last commit, with a warning, and read. Where it cannot be rolled back
// the store refuses it (Repository_test.cpp), reported as any bad file.
TEST_F(DescriptorTool, AStoreLeftMidWriteIsRolledBackWithAWarning) {
    const std::string committed = fileBytes(store_);
    // A writer whose transaction spills into the file at once (a cache of
    // one page), ended without a rollback.
    testing_support::waitForChild(testing_support::startChild({}, [&] {
        sqlite3* db = nullptr;
        sqlite3_open(store_.c_str(), &db);
        sqlite3_exec(
            db,
            "PRAGMA cache_size = 1; BEGIN; CREATE TABLE pad (x); INSERT INTO pad VALUES (zeroblob(100000))",
            nullptr, nullptr, nullptr);
    }));
    ASSERT_NE(committed, fileBytes(store_)) << "the transaction did not reach the file";
    const ToolRun result = run({"dump", "--json", "{F}"}, store_);
    EXPECT_EQ(replaceAll("velcg-descriptor: warning: {F}: The code descriptor '{F}' was left by a writer "
                         "that stopped; its unfinished transaction was rolled back. "
                         "[coder:Repository:RolledBack]\n",
                         "{F}", store_.string()),
              result.err);
    EXPECT_EQ(expectedJson_, result.out);
    EXPECT_EQ(committed, fileBytes(store_));
}

// Help is the usage and what each command does, on standard output; a
// usage error says what is wrong, then shows the usage, and exits with 2
// (DescriptorTool_usage.txt). A file name that starts with a dash is read
// after "--".
TEST_F(DescriptorTool, HelpGoesToStandardOutputAndUsageErrorsExitWithTwo) {
    const std::vector<std::vector<std::string>> commands = {
        {"--help"},
        {"dump", "--help"},
        {},
        {"dump"},
        {"dump", "{F}", "{F}"},
        {"dump", "--xml", "{F}"},
        {"check", "--json", "{F}"},
        {"list", "{F}"},
        {"--json", "dump", "{F}"},
        {"check", "--", "-model.strata"},
    };
    std::filesystem::copy_file(store_, dir_ / "-model.strata");
    const std::filesystem::path cwd = std::filesystem::current_path();
    std::filesystem::current_path(dir_.path());
    std::string transcript;
    for (const auto& args : commands) {
        const ToolRun result = run(args, store_);
        transcript += "velcg-descriptor";
        for (const std::string& arg : args) transcript += " " + arg;
        transcript += " -> exit " + std::to_string(result.status) + "\n" +
                      (result.out.empty() ? "" : "[standard output]\n" + result.out) +
                      (result.err.empty() ? "" : "[standard error]\n" + result.err);
    }
    std::filesystem::current_path(cwd);
    EXPECT_MATCHES_FILE(transcript, __FILE__, "DescriptorTool_usage.txt");
}

} // namespace
