#include "coder/Repository.hpp"

#include <csignal>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "ChildProcess.hpp"
#include "DescriptorModels.hpp"
#include "DiagnosticTesting.hpp"
#include "StoreRows.hpp"
#include "TempDir.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "coder/descriptor/Dump.hpp"

namespace {

using coder::Repository;
using coder::RepositoryOptions;
using coder::Transaction;
using namespace coder::descriptor;
using namespace testing_support;

std::u16string storedModelName(const std::filesystem::path& path) {
    Repository repository(path, {RepositoryOptions::Access::ReadOnly});
    return RepositoryHelper::getModel(repository).getModelName();
}

TEST(Repository, CommittedWorkIsVisibleToALaterReaderAndUncommittedWorkIsNot) {
    TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    storeModel(path, u"first");
    EXPECT_EQ(u"first", storedModelName(path));

    {
        Repository repository(path);
        Transaction transaction(repository);
        writeModel(repository, u"scoped, never committed");
    }
    {
        Repository repository(path);
        repository.beginTransaction();
        writeModel(repository, u"explicitly rolled back");
        repository.rollbackTransaction();
        EXPECT_FALSE(repository.inTransaction());
    }
    {
        Repository repository(path);
        repository.beginTransaction();
        writeModel(repository, u"open when the repository closes");
    }
    EXPECT_EQ(u"first", storedModelName(path));
    EXPECT_TRUE(Repository(path, {RepositoryOptions::Access::ReadOnly}).checkIntegrity().empty());
}

TEST(Repository, ANewModelReplacesTheStoredOne) {
    TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    for (const char16_t* name : {u"one", u"two"}) storeModel(path, name, 3);
    Repository repository(path, {RepositoryOptions::Access::ReadOnly});
    const std::string dump = dumpText(repository);
    EXPECT_NE(std::string::npos, dump.find("ModelName: \"two\""));
    EXPECT_EQ(std::string::npos, dump.find("\"one\""));

    // Rebuilding gives the same file content, not duplicates.
    const std::string rows = testing_support::rowCounts(path);
    EXPECT_NE(std::string::npos, rows.find("\nModel 1\n")) << rows;
    EXPECT_NE(std::string::npos, rows.find("\nGraphicalBlock 3\n")) << rows;
}

TEST(Repository, TransactionMisuseIsADiagnostic) {
    TempDir dir;
    Repository repository(dir / "s.strata");
    EXPECT_EQ("coder:Repository:NoTransaction",
              diagnosticOf([&] { ModelCreator(repository).createModel(); }));
    EXPECT_EQ("coder:Repository:NoTransaction", diagnosticOf([&] { repository.commitTransaction(); }));
    EXPECT_EQ("coder:Repository:NoTransaction",
              diagnosticOf([&] { coder::Savepoint savepoint(repository); }));
    repository.beginTransaction();
    EXPECT_EQ("coder:Repository:TransactionActive", diagnosticOf([&] { repository.beginTransaction(); }));
    Model model = ModelCreator(repository).createModel();
    repository.commitTransaction();
    EXPECT_EQ("coder:Repository:NoTransaction",
              diagnosticOf([&] { model.getSystems().append(SystemCreator(repository).createSystem()); }));

    Transaction transaction(repository);
    coder::Savepoint savepoint(repository);
    savepoint.release();
    EXPECT_EQ("coder:Repository:NoTransaction", diagnosticOf([&] { savepoint.release(); }));
    transaction.commit();
    EXPECT_EQ("coder:Repository:NoTransaction", diagnosticOf([&] { transaction.commit(); }));
}

TEST(Repository, ReadOnlyAccessNeverWrites) {
    TempDir dir;
    const auto path = dir / "s.strata";
    storeModel(path, u"m");
    const std::string before = fileBytes(path);
    Repository reader(path, {RepositoryOptions::Access::ReadOnly});
    EXPECT_TRUE(reader.isReadOnly());
    EXPECT_EQ("coder:Repository:ReadOnly", diagnosticOf([&] { reader.beginTransaction(); }));
    EXPECT_EQ("coder:Repository:CannotOpen", diagnosticOf([&] {
                  Repository(dir / "absent.strata", {RepositoryOptions::Access::ReadOnly});
              }));
    EXPECT_FALSE(std::filesystem::exists(dir / "absent.strata"));
    EXPECT_EQ(before, fileBytes(path));
}

// Files that are not stores, or stores this build must not write: each
// raises its diagnostic and keeps every byte.
TEST(Repository, BadFilesAreRefusedAndLeftUnchanged) {
    struct Case {
        const char* name;
        std::function<void(const std::filesystem::path&)> make;
        const char* identifier;
    };
    auto goodStore = [](const std::filesystem::path& path) { storeModel(path, u"m", 400); };
    const std::vector<Case> cases = {
        {"random bytes",
         [](const std::filesystem::path& path) {
             std::mt19937 random(7);
             std::string bytes(8192, '\0');
             for (char& c : bytes) c = static_cast<char>(random());
             writeBytes(path, bytes);
         },
         "coder:Repository:NotAStore"},
        {"a text file", [](const std::filesystem::path& path) { writeBytes(path, "model = gain\n"); },
         "coder:Repository:NotAStore"},
        {"another SQLite database",
         [](const std::filesystem::path& path) { execSql(path, "CREATE TABLE notes (body TEXT)"); },
         "coder:Repository:NotAStore"},
        {"a truncated store",
         [&](const std::filesystem::path& path) {
             goodStore(path);
             std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
         },
         "coder:Repository:Corrupt"},
        {"a store of a newer format",
         [&](const std::filesystem::path& path) {
             goodStore(path);
             execSql(path, "PRAGMA user_version = " + std::to_string(Repository::kFormatVersion + 1));
         },
         "coder:Repository:NewerFormat"},
        {"a store that lost a table",
         [&](const std::filesystem::path& path) {
             goodStore(path);
             execSql(path, "DROP TABLE \"Port_DataInterfaces\"");
         },
         "coder:Repository:Corrupt"},
    };
    for (const auto& c : cases) {
        TempDir dir;
        const auto path = dir / "codedescriptor.strata";
        c.make(path);
        const std::string before = fileBytes(path);
        EXPECT_EQ(c.identifier, diagnosticOf([&] { Repository repository(path); })) << c.name;
        EXPECT_EQ(c.identifier,
                  diagnosticOf([&] { Repository repository(path, {RepositoryOptions::Access::ReadOnly}); }))
            << c.name;
        EXPECT_EQ(before, fileBytes(path)) << c.name;
        EXPECT_FALSE(std::filesystem::exists(path.string() + "-journal")) << c.name;
    }
}

// A store of format 1 (without the table UnfinishedRun) reads as it is and
// holds no unfinished run; the first transaction written to it makes it a
// store of format 2, and one rolled back leaves it as it was.
TEST(Repository, AFormatOneStoreIsReadAndUpgradedByItsFirstWrite) {
    TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    storeModel(path, u"old");
    execSql(path, "DROP TABLE UnfinishedRun; PRAGMA user_version = 1");
    const std::string formatOne = fileBytes(path);
    const auto state = [&path] {
        Repository reader(path, {RepositoryOptions::Access::ReadOnly});
        return std::to_string(reader.getFormatVersion()) + " " + vel::i18n::toUtf8(storedModelName(path)) +
               " [" + reader.getUnfinishedRun() + "]" + (reader.checkIntegrity().empty() ? "" : " damaged");
    };
    EXPECT_EQ("1 old []", state());
    {
        Repository writer(path);
        Transaction transaction(writer);
        writer.setUnfinishedRun("rolled back");
    }
    EXPECT_EQ(formatOne, fileBytes(path));
    {
        Repository writer(path);
        Transaction transaction(writer);
        writer.setUnfinishedRun("run 1");
        transaction.commit();
    }
    EXPECT_EQ("2 old [run 1]", state());
    // A new model is no longer the unfinished run's.
    storeModel(path, u"new");
    EXPECT_EQ("2 new []", state());
}

TEST(Repository, AMissingDirectoryOrAPathHoldingANulCannotBeOpened) {
    TempDir dir;
    EXPECT_EQ("coder:Repository:CannotOpen",
              diagnosticOf([&] { Repository(dir / "no" / "such" / "s.strata"); }));
    EXPECT_FALSE(std::filesystem::exists(dir / "no"));
    // The file named by the text before the NUL is not created either.
    const std::string before = (dir / "s").string();
    EXPECT_EQ("coder:Repository:CannotOpen(" + before + "\\0/x.strata, the path holds a NUL character)",
              diagnosticWithArgumentsOf([&] { Repository(before + std::string(1, '\0') + "/x.strata"); }));
    EXPECT_FALSE(std::filesystem::exists(dir / "s"));
}

TEST(Repository, AFullDiskRollsBackToTheLastCommit) {
    TempDir dir;
    const auto path = dir / "s.strata";
    storeModel(path, u"small");
    const std::string before = fileBytes(path);
    RepositoryOptions limited;
    limited.maxPageCount = 40;
    {
        Repository repository(path, limited);
        Transaction transaction(repository);
        EXPECT_EQ("coder:Repository:Full", diagnosticOf([&] { writeModel(repository, u"large", 50000); }));
    }
    EXPECT_EQ(before, fileBytes(path));
    EXPECT_EQ(u"small", storedModelName(path));
    EXPECT_TRUE(Repository(path).checkIntegrity().empty());
}

TEST(Repository, ASecondWriterWaitsForTheLockThenFails) {
    TempDir dir;
    const auto path = dir / "s.strata";
    Repository first(path);
    RepositoryOptions impatient;
    impatient.busyTimeoutMs = 20;
    Repository second(path, impatient);

    first.beginTransaction();
    writeModel(first, u"first");
    EXPECT_EQ("coder:Repository:Busy", diagnosticOf([&] { second.beginTransaction(); }));
    EXPECT_FALSE(second.inTransaction());
    first.commitTransaction();

    second.beginTransaction();
    writeModel(second, u"second");
    second.commitTransaction();
    EXPECT_EQ(u"second", storedModelName(path));
}

// A process killed inside a transaction leaves the last commit and a hot
// journal. Whoever opens the file next and may write it and its directory
// rolls the journal back (a reader saying so); anyone else gets
// LeftMidWrite and leaves the journal for them.
TEST(Repository, AProcessKilledInsideATransactionLeavesTheLastCommit) {
    namespace fs = std::filesystem;
    TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    int ready[2];
    ASSERT_EQ(0, pipe(ready));
    const pid_t child = fork();
    ASSERT_NE(-1, child);
    if (child == 0) {
        // Commits one model, then writes another for ever; tells the parent
        // once the second transaction has reached the file.
        close(ready[0]);
        try {
            Repository repository(path);
            {
                Transaction transaction(repository);
                writeModel(repository, u"committed", 10);
                transaction.commit();
            }
            Transaction transaction(repository);
            writeModel(repository, u"in flight", 20000);
            if (write(ready[1], "x", 1) != 1) _exit(3);
            for (GraphicalBlockCreator block(repository);;) block.createGraphicalBlock();
        } catch (...) {
            _exit(2);
        }
    }
    close(ready[1]);
    char signal = 0;
    ASSERT_EQ(1, read(ready[0], &signal, 1)) << "the writer stopped early";
    close(ready[0]);
    // The journal's header is written once the transaction spills into the
    // file; until then a reader needs no rollback.
    const fs::path journal = path.string() + "-journal";
    const auto hot = [&] { return std::ifstream(journal).get() == 0xd9; };
    for (int wait = 0; wait < 3000 && !hot(); ++wait) usleep(10000);
    ASSERT_EQ(0, kill(child, SIGKILL));
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_TRUE(hot()) << "the kill did not leave a hot journal";
    const std::string leftFile = fileBytes(path), leftJournal = fileBytes(journal);

    const auto readOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    const auto readWrite =
        readOnly | fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    const auto search = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    const std::string refused = "coder:Repository:LeftMidWrite(" + path.string() + ", ";
    struct Case {
        const char* opener;
        RepositoryOptions::Access access;
        fs::perms file, directory;
        std::string expected; // the diagnostic, or the warnings and the model read
    } cases[] = {
        {"a reader that may not write the file", RepositoryOptions::Access::ReadOnly, readOnly,
         fs::perms::all, refused + "this process may not write the file)"},
        {"a writer that may not write the file", RepositoryOptions::Access::ReadWrite, readOnly,
         fs::perms::all, refused + "this process may not write the file)"},
        {"a reader that may not write the directory", RepositoryOptions::Access::ReadOnly, readWrite,
         readOnly | search, refused + "the directory does not let the journal be deleted)"},
        {"a writer that may not write the directory", RepositoryOptions::Access::ReadWrite, readWrite,
         readOnly | search, refused + "the directory does not let the journal be deleted)"},
        {"a reader that may write both", RepositoryOptions::Access::ReadOnly, readWrite, fs::perms::all,
         "coder:Repository:RolledBack " + path.string() + ": committed, 10 blocks"},
        {"a writer that may write both", RepositoryOptions::Access::ReadWrite, readWrite, fs::perms::all,
         "committed, 10 blocks"},
    };
    // The diagnostic that refuses the file, or the warnings raised and the
    // model read.
    const auto open = [&path](RepositoryOptions::Access access) {
        vel::diag::WarningCollector warnings;
        std::string read;
        const std::string refusal = diagnosticWithArgumentsOf([&] {
            Repository repository(path, {access});
            Model model = RepositoryHelper::getModel(repository);
            const auto blocks =
                model.getBlockHierarchyMap().getGraphicalSystems().at(0).getGraphicalBlocks().size();
            read = vel::i18n::toUtf8(model.getModelName()) + ", " + std::to_string(blocks) + " blocks" +
                   (repository.checkIntegrity().empty() ? "" : ", damaged");
        });
        if (refusal != "no diagnostic") return refusal;
        for (const auto& w : warnings.warnings())
            read = w.identifier() + " " + w.arguments().at(0) + ": " + read;
        return read;
    };
    for (const Case& c : cases) {
        writeBytes(path, leftFile);
        writeBytes(journal, leftJournal);
        fs::permissions(path, c.file);
        fs::permissions(journal, c.file);
        fs::permissions(dir.path(), c.directory);
        // Permission bits bind the superuser only once it has dropped its rights.
        EXPECT_EQ(c.expected, runInChild(testing_support::unprivileged(), [&] { return open(c.access); }))
            << c.opener;
        fs::permissions(dir.path(), fs::perms::all);
        // Refused, the journal stays for an opener that may write.
        EXPECT_EQ(c.expected.rfind(refused, 0) == 0, fs::exists(journal)) << c.opener;
    }
    // A reader opened before the writer stopped.
    Repository reader(path, {RepositoryOptions::Access::ReadOnly});
    writeBytes(path, leftFile);
    writeBytes(journal, leftJournal);
    EXPECT_EQ(refused + "the repository is open for reading only)",
              diagnosticWithArgumentsOf([&] { RepositoryHelper::getModel(reader); }));
}

} // namespace
