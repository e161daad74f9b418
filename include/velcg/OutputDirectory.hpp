#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velcg/Export.hpp"

namespace vel::sys {
class DirectoryLock;
}

namespace VelCG {

// The output directory of a generation, changed only as a whole.
//
// A run stages every file it generates in a directory of its own inside
// the output directory (".velcg-gen-staging"), then commits: each staged
// file whose bytes differ from the file in place is renamed over it, files
// with the same bytes stay untouched (modification time included), and
// files that an earlier run generated and this one did not are removed.
// The manifest ".velcg-gen-manifest" lists what the last run generated; it
// is the only record of what may be removed, so nothing else is ever
// deleted.
//
// Before renaming, the commit writes the list of its moves into the staging
// directory. A run killed while committing thus leaves a commit that the
// next run finishes; a run killed or failing before leaves the output
// directory as it was, apart from the staging directory, which the next run
// removes. The directory is locked for the life of the object, so runs into
// one directory take turns.
class VELCG_API OutputDirectory {
public:
    struct Change {
        enum class Kind { Added, Changed, Unchanged, Removed };
        std::string name; // relative to the directory, '/'-separated
        Kind kind;
    };

    // Creates the directory, locks it (waiting for another holder when
    // `wait`, after calling onWait; otherwise raising "VelCG:Generation:Busy"),
    // finishes a commit a killed run left, and prepares an empty staging
    // directory. Failures are "VelCG:Generation:<key>" diagnostics. With `recover` false (a check that writes
    // nothing), an earlier run's leftovers are neither finished nor removed and the staging directory is made
    // elsewhere.
    OutputDirectory(const std::filesystem::path& directory, bool wait, const std::function<void()>& onWait,
                    bool recover = true);
    // Removes the staging directory of a run that did not commit.
    ~OutputDirectory();
    OutputDirectory(const OutputDirectory&) = delete;
    OutputDirectory& operator=(const OutputDirectory&) = delete;

    const std::filesystem::path& path() const { return directory_; }
    const std::filesystem::path& staging() const { return staging_; }

    // What committing the staged files would change, sorted by name.
    std::vector<Change> compare() const;
    // Commits the staged files; returns what changed. The object is done.
    std::vector<Change> commit();

    // True when `name` is a relative '/'-separated path inside a directory:
    // every component a plain file name (see plainFileNameProblem), and
    // nothing of this class's own bookkeeping.
    static bool isPlainRelativePath(const std::string& name);

    static constexpr const char* kManifestName = ".velcg-gen-manifest";
    static constexpr const char* kStagingName = ".velcg-gen-staging";

private:
    std::vector<std::string> stagedFiles() const;
    std::vector<std::string> readManifest() const;
    void apply(const std::vector<std::string>& moves, const std::vector<std::string>& removals) const;
    void finishInterruptedCommit();

    std::filesystem::path directory_;
    std::filesystem::path staging_;
    std::unique_ptr<vel::sys::DirectoryLock> lock_;
    bool committed_ = false;
};

} // namespace VelCG
