#include "velcg/OutputDirectory.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "TempDir.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/Generation.hpp"
#include "velcg/ModelDescription.hpp"

namespace {

namespace fs = std::filesystem;
using VelCG::OutputDirectory;
using Kind = OutputDirectory::Change::Kind;
using testing_support::diagnosticOf;

void write(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

TEST(OutputDirectory, OnlyPlainRelativeNamesAreGenerated) {
    for (const char* good : {"a.c", "sub/a.c", "a b.h", ".hidden", "x..y"})
        EXPECT_TRUE(OutputDirectory::isPlainRelativePath(good)) << good;
    for (const char* bad : {"", "/abs.c", "../up.c", "a/../../b", "./a", "a//b", "a/", "c:x", "a\\b",
                            "sub/nul.c", "a. /b", ".velcg-gen-manifest", ".velcg-gen-staging/a"})
        EXPECT_FALSE(OutputDirectory::isPlainRelativePath(bad)) << bad;
    EXPECT_FALSE(OutputDirectory::isPlainRelativePath(std::string("a\0b", 3)));
}

// A run commits what changed and removes what an earlier run generated and
// this one did not; files it never generated stay, whatever their names.
TEST(OutputDirectory, CommitsChangesAndRemovesOnlyItsOwnStaleFiles) {
    testing_support::TempDir dir;
    {
        OutputDirectory first(dir.path(), true, nullptr);
        write(first.staging() / "same.c", "same");
        write(first.staging() / "changes.c", "old");
        write(first.staging() / "goes/away.c", "gone soon");
        first.commit();
    }
    write(dir.path() / "mine.c", "the user's");
    const auto unchangedTime = fs::last_write_time(dir.path() / "same.c");
    OutputDirectory second(dir.path(), true, nullptr);
    write(second.staging() / "same.c", "same");
    write(second.staging() / "changes.c", "new");
    write(second.staging() / "added.c", "added");
    const std::vector<OutputDirectory::Change> changes = second.commit();
    std::vector<std::pair<std::string, Kind>> got;
    for (const auto& c : changes) got.emplace_back(c.name, c.kind);
    const std::vector<std::pair<std::string, Kind>> expected = {{"added.c", Kind::Added},
                                                                {"changes.c", Kind::Changed},
                                                                {"goes/away.c", Kind::Removed},
                                                                {"same.c", Kind::Unchanged}};
    EXPECT_EQ(expected, got);
    EXPECT_EQ("new", testing_support::fileBytes(dir.path() / "changes.c"));
    EXPECT_EQ(unchangedTime, fs::last_write_time(dir.path() / "same.c"));
    EXPECT_FALSE(fs::exists(dir.path() / "goes"));
    EXPECT_EQ("the user's", testing_support::fileBytes(dir.path() / "mine.c"));
    EXPECT_FALSE(fs::exists(dir.path() / OutputDirectory::kStagingName));
}

// A commit killed after some of its moves is finished by the next run
// before anything else; a staging directory without a commit is dropped.
TEST(OutputDirectory, TheNextRunFinishesAnInterruptedCommit) {
    testing_support::TempDir dir;
    write(dir.path() / "old.c", "old");
    write(dir.path() / OutputDirectory::kManifestName, "velcg-gen manifest 1\nold.c\n");
    const fs::path staging = dir.path() / OutputDirectory::kStagingName;
    write(dir.path() / "moved.c", "moved before the kill");
    write(staging / "pending.c", "pending");
    write(staging / OutputDirectory::kManifestName, "velcg-gen manifest 1\nmoved.c\npending.c\n");
    write(staging / ".velcg-gen-commit",
          "velcg-gen commit 1\nmoved.c+\npending.c+\nold.c-\n.velcg-gen-manifest+\n");
    { OutputDirectory next(dir.path(), true, nullptr); }
    EXPECT_EQ("pending", testing_support::fileBytes(dir.path() / "pending.c"));
    EXPECT_EQ("moved before the kill", testing_support::fileBytes(dir.path() / "moved.c"));
    EXPECT_FALSE(fs::exists(dir.path() / "old.c"));
    EXPECT_EQ("velcg-gen manifest 1\nmoved.c\npending.c\n",
              testing_support::fileBytes(dir.path() / OutputDirectory::kManifestName));
    EXPECT_FALSE(fs::exists(staging));

    write(staging / "abandoned.c", "abandoned");
    { OutputDirectory next(dir.path(), true, nullptr); }
    EXPECT_FALSE(fs::exists(dir.path() / "abandoned.c"));
    EXPECT_FALSE(fs::exists(staging));
}

// Lists that would remove files outside the directory are refused before
// anything is touched.
TEST(OutputDirectory, RefusesHostileLists) {
    testing_support::TempDir dir;
    write(dir.path() / "victim.c", "keep");
    const fs::path out = dir.path() / "out";
    for (const std::string& manifest :
         {std::string("velcg-gen manifest 1\n../victim.c\n"),
          std::string("velcg-gen manifest 1\n") + dir.path().string() + "/victim.c\n",
          std::string("something else\nvictim.c\n")}) {
        write(out / OutputDirectory::kManifestName, manifest);
        OutputDirectory run(out, true, nullptr);
        try {
            run.commit();
            ADD_FAILURE() << manifest;
        } catch (const vel::diag::Exception& e) {
            EXPECT_EQ("VelCG:Generation:BadManifest", e.identifier());
        }
        EXPECT_EQ("keep", testing_support::fileBytes(dir.path() / "victim.c"));
    }
}

} // namespace

// A committed run hands over its model and refuses any later use of it;
// destroying the run still removes a check's staging directory.
TEST(Generation, HandsOverItsModelOnlyOnceCommitted) {
    testing_support::TempDir dir;
    auto described = [] {
        return VelCG::ModelDescription::parse(
            R"({"format": "velcg-model-description", "formatVersion": 1, "name": "m",
                "files": [{"kind": "Generic", "name": "m.c"}]})",
            "m.json");
    };
    VelCG::ModelDescription kept;
    fs::path staging;
    {
        VelCG::Generation check(described(), {dir.path() / "out", true, true, {}});
        staging = check.stagingDirectory();
        EXPECT_EQ(diagnosticOf([&] { check.releaseDescription(); }), "VelCG:Generation:NotCompleted");
        check.complete();
        check.commit();
        kept = check.releaseDescription();
        ASSERT_NE(kept.model, nullptr);
        EXPECT_EQ(diagnosticOf([&] { check.model(); }), "VelCG:Generation:Completed");
        EXPECT_EQ(diagnosticOf([&] { check.repository(); }), "VelCG:Generation:Completed");
        EXPECT_EQ(diagnosticOf([&] { check.releaseDescription(); }), "VelCG:Generation:Completed");
    }
    EXPECT_FALSE(fs::exists(staging));
    EXPECT_EQ(kept.model->getName(), L"m");
}
