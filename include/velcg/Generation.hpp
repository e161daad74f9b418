#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "velcg/Export.hpp"
#include "velcg/ModelDescription.hpp"
#include "velcg/OutputDirectory.hpp"

namespace VelCG {

class VelCGFileRepository;

// One generation of a described model into an output directory, around the
// templates that a caller runs:
//
//   Generation run(ModelDescription::load("model.json"), {"out"});
//   ... templates read run.model(), fill run.repository() and may write
//       files of their own into run.stagingDirectory() ...
//   Generation::Result result = run.finish();
//
// The constructor locks the output directory, starts the model's first
// serialization pass into the staging directory and creates the described
// files. complete() writes every file the templates left unwritten (section
// by section, in section order), runs the second pass and waits for both;
// commit() commits the staging directory (see OutputDirectory), or with
// `check` only compares it. A run destroyed without finish() leaves the output
// directory as it was.
class VELCG_API Generation {
public:
    struct Settings {
        std::filesystem::path outputDirectory;
        // Compare only: nothing in the output directory changes.
        bool check = false;
        // Wait for another run that holds the output directory, after
        // calling onWait; otherwise fail with "VelCG:Generation:Busy".
        bool wait = true;
        std::function<void()> onWait;
    };
    struct Result {
        std::vector<OutputDirectory::Change> changes;
        std::size_t blocks = 0;
        // The serialization switch in effect; below 1 no descriptor is written.
        int level = 0;
        // The time finish() spent writing files, and running or waiting for
        // the second pass (at the switch's default also the rest of the
        // first).
        std::chrono::steady_clock::duration writing{}, serializing{};
    };

    Generation(ModelDescription description, Settings settings);
    ~Generation();
    Generation(const Generation&) = delete;
    Generation& operator=(const Generation&) = delete;

    // Both raise "VelCG:Generation:Completed" after releaseDescription().
    CGModel& model();
    VelCGFileRepository& repository();
    const ModelDescription& description() const { return description_; }
    const std::filesystem::path& outputDirectory() const;
    // Where templates write files of their own.
    const std::filesystem::path& stagingDirectory() const;

    // Writes the files the templates left and runs the second pass, then
    // waits for both passes. REQUIRES: called once.
    void complete();
    // Commits the staging directory (with `check`, compares it only).
    // REQUIRES: complete() has run; called once. Between the two a caller
    // may still decide not to commit, by destroying the run.
    Result commit();
    // complete(), then commit(). Failures raise diagnostics; the output
    // directory then stays as it was.
    Result finish();
    // Hands over the model and the rest of the description once the run is
    // committed: destroying the run then only unlocks the output directory
    // (and removes a check's staging directory). A tool about to exit may
    // leave the model to the system rather than free it object by object.
    // Raises "VelCG:Generation:NotCompleted" before commit(), and
    // "VelCG:Generation:Completed" when called again.
    ModelDescription releaseDescription();

    // Writes every file of the repository that is neither written nor
    // filtered out into `directory` (writeWholeFile), and marks it written.
    // Failures name the file as `shownDirectory`/NAME.
    static void writeUnwrittenFiles(VelCGFileRepository& repository, const std::filesystem::path& directory,
                                    const std::filesystem::path& shownDirectory);

private:
    // Destroyed in reverse: the files, then the model (which waits for its
    // passes), then the staging directory.
    Settings settings_;
    std::unique_ptr<OutputDirectory> output_;
    ModelDescription description_;
    std::unique_ptr<VelCGFileRepository> repository_;
    enum class Stage { Running, Completed, Committed } stage_ = Stage::Running;
    std::chrono::steady_clock::duration writing_{}, serializing_{};
};

} // namespace VelCG
