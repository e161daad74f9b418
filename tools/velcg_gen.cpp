// Generates code for a model described in a file:
//
//   velcg-gen MODEL.json TEMPLATE.py -o OUTDIR [--times] [--repeat N]
//
// Loads the model description, creates the repository with the files it
// describes, runs the Python template on them (globals: model, repository,
// outputDirectory), writes every file the template did not write itself
// into OUTDIR, and records the model in OUTDIR/codedescriptor.strata in
// both passes (as the switch VelCGDirectEmitSerialize says; the environment
// variable VEL_FEATURE_VelCGDirectEmitSerialize sets it). Prints what it
// wrote; with --times, also how long each phase took (serialize counts the
// time the caller spent in or waiting for either pass; at the switch's
// default the first pass runs while the template does).
//
// --repeat N runs the whole generation N times in this process (a soak:
// each run loads the description anew and overwrites OUTDIR), prints what
// the last run wrote, and reports resident memory after the first run, the
// tenth of the runs and the last, so that growth between the last two shows
// memory kept from run to run. A failing run ends the repetition.
//
// Exit status: 0 on success, 1 for bad input (usage, description, files),
// 2 when the template raised (its traceback is printed). Warnings about
// text the library dropped go to standard error as
// "velcg-gen: warning: IDENTIFIER: MESSAGE" and do not change the status.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <boost/filesystem.hpp>

#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "vel/io/Stream.hpp"
#include "vel/sys/Process.hpp"
#include "velcg/velcg.hpp"

namespace {

namespace fs = boost::filesystem;
using Clock = std::chrono::steady_clock;

struct Options {
    std::string model;
    std::string templatePath;
    std::string outputDirectory;
    bool times = false;
    long repeat = 1;
};

int usage(const char* message) {
    if (message) std::fprintf(stderr, "velcg-gen: %s\n", message);
    std::fprintf(stderr, "usage: velcg-gen MODEL.json TEMPLATE.py -o OUTDIR [--times] [--repeat N]\n");
    return 1;
}

bool parseArguments(int argc, char** argv, Options& options, const char*& error, bool& unknownOption) {
    std::vector<std::string> positional;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "-o")) {
            if (++i == argc) {
                error = "-o needs a directory";
                return false;
            }
            options.outputDirectory = argv[i];
        } else if (!std::strcmp(argv[i], "--times")) {
            options.times = true;
        } else if (!std::strcmp(argv[i], "--repeat")) {
            char* end = nullptr;
            options.repeat = ++i == argc ? 0 : std::strtol(argv[i], &end, 10);
            if (i == argc || *end != '\0' || options.repeat < 1 || options.repeat > 1000000) {
                error = "--repeat needs a count from 1 to 1000000";
                return false;
            }
        } else if (argv[i][0] == '-' && argv[i][1] != '\0') {
            error = argv[i];
            unknownOption = true;
            return false;
        } else {
            positional.push_back(argv[i]);
        }
    }
    if (positional.size() != 2 || options.outputDirectory.empty()) {
        error = positional.size() != 2 ? "expected a model description and a template" : "missing -o OUTDIR";
        return false;
    }
    options.model = positional[0];
    options.templatePath = positional[1];
    return true;
}

// Progress for people watching a long run; silent when standard error is a
// file or a pipe.
class Progress {
public:
    Progress() : enabled_(vel::io::isTerminal(stderr)) {}
    void phase(const std::string& text) {
        if (!enabled_) return;
        std::fprintf(stderr, "\r\033[Kvelcg-gen: %s", text.c_str());
        std::fflush(stderr);
    }
    void done() {
        if (enabled_) std::fprintf(stderr, "\r\033[K");
    }

private:
    bool enabled_;
};

// Ends a run whose failure has been reported already.
struct AlreadyReported {};

struct Written {
    std::string path;
    std::uintmax_t bytes;
};

// Writes every file the template left unwritten (and did not filter out),
// section by section in section order, through the script bridge.
std::vector<Written> writeFiles(VelCG::VelCGFileRepository& repository, const fs::path& directory,
                                Progress& progress) {
    VelCG::FileRepScrivBridge& bridge = repository.scrivBridge();
    const int count = static_cast<int>(repository.getFileList().size());
    std::vector<Written> written;
    for (int i = 0; i < count; ++i) {
        const VelCG::VelCGFile& file = *repository.getFileList()[static_cast<std::size_t>(i)];
        const fs::path path = directory / file.getNameAscii();
        if (!file.isWrittenToDisk() && !file.getFiltered()) {
            progress.phase("writing files " + std::to_string(i + 1) + "/" + std::to_string(count));
            std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(path.string().c_str(), "wb"),
                                                                   &std::fclose);
            if (!stream)
                vel::diag::throwErrorText(
                    "VelCG:Gen:CannotWrite",
                    "Cannot open '" + path.string() + "' for writing: " + std::strerror(errno) + ".");
            // A failure names the file; the files written before it stay as
            // they are, and this one is not marked written.
            try {
                for (int kind = VelCG::BANNER_SECTION; kind <= VelCG::USERBOTTOM_SECTION; ++kind) {
                    const std::string section =
                        VelCG::getScrivSectionNameFromEnum(static_cast<VelCG::VelCGFileSectionKind>(kind));
                    if (section.empty()) continue;
                    bridge.appendMissingTokens(i, section);
                    bridge.writeSection(i, section, stream.get());
                }
            } catch (const vel::diag::Exception& e) {
                vel::diag::throwErrorText(e.identifier(), path.string() + ": " + e.diagnostic().message());
            }
            if (std::fclose(stream.release()) != 0)
                vel::diag::throwErrorText("VelCG:Gen:CannotWrite", "Cannot finish writing '" + path.string() +
                                                                       "': " + std::strerror(errno) + ".");
            bridge.setAttribute(i, "WrittenToDisk", true);
        }
        if (file.isWrittenToDisk() && fs::exists(path))
            written.push_back({path.string(), fs::file_size(path)});
    }
    return written;
}

std::size_t blockCount(const VelCG::CGModel& model) {
    std::size_t n = 0;
    for (const VelCG::GraphicalSubsystem* s : model.getBlockHierarchyMap()->getSubsystems())
        n += s->getBlocks().size();
    return n;
}

double seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

// One generation from the description to the descriptor. Failures are
// reported here and set status (1, or 2 when the template raised); the
// diagnostic reporter sets it too. With report, prints what was written.
void generate(const Options& options, Progress& progress, int& status, bool report) {
    try {
        const fs::path directory(options.outputDirectory);
        fs::create_directories(directory);
        const std::wstring buildDirectory = vel::i18n::toWide(directory.string());

        progress.phase("loading " + options.model);
        const Clock::time_point start = Clock::now();
        VelCG::ModelDescription description = VelCG::ModelDescription::load(options.model);
        VelCG::CGModel& model = *description.model;
        const Clock::time_point loaded = Clock::now();

        // The model is complete: its first pass runs while the template
        // does (on a background thread at the switch's default).
        model.serializeModel(buildDirectory);
        const Clock::time_point firstPass = Clock::now();
        VelCG::VelCGFileRepository repository;
        description.createFiles(repository);

        progress.phase("running " + options.templatePath);
        VelCG::PythonRuntime::Globals globals;
        globals.add("model", model).add("repository", repository).add("outputDirectory", directory.string());
        try {
            VelCG::PythonRuntime::runTemplate(options.templatePath, globals);
        } catch (const vel::diag::Exception& e) {
            if (e.identifier() != "VelCG:Python:TemplateFailed") throw;
            progress.done();
            std::fprintf(stderr, "velcg-gen: %s\n", e.diagnostic().message().c_str());
            status = 2;
        }
        const Clock::time_point templated = Clock::now();
        if (status != 0) {
            // The files stay unwritten; the descriptor keeps its first pass.
            description.model.reset();
            throw AlreadyReported();
        }

        const std::vector<Written> files = writeFiles(repository, directory, progress);
        const Clock::time_point wrote = Clock::now();

        progress.phase("serializing " + std::to_string(blockCount(model)) + " blocks");
        model.serializeModelAfterScriv(buildDirectory);
        // Destroying the model waits for the last pass and reports its failures.
        const std::size_t blocks = blockCount(model);
        description.model.reset();
        const Clock::time_point serialized = Clock::now();
        progress.done();

        if (status != 0) throw AlreadyReported();
        if (!report) return;
        for (const Written& f : files) std::printf("wrote %s (%ju bytes)\n", f.path.c_str(), f.bytes);
        const fs::path descriptor = directory / VelCG::CGModel::kCodeDescriptorFileName;
        std::printf("wrote %s (%zu blocks)\n", descriptor.string().c_str(), blocks);
        if (options.times)
            std::fprintf(stderr, "velcg-gen: load %.3f s, template %.3f s, write %.3f s, serialize %.3f s\n",
                         seconds(loaded - start), seconds(templated - firstPass), seconds(wrote - templated),
                         seconds((firstPass - loaded) + (serialized - wrote)));
    } catch (const AlreadyReported&) {
        // Reported where it happened; status says how.
    } catch (const vel::diag::Exception& e) {
        progress.done();
        std::fprintf(stderr, "velcg-gen: %s\n", e.diagnostic().message().c_str());
        status = 1;
    } catch (const std::exception& e) {
        progress.done();
        std::fprintf(stderr, "velcg-gen: %s\n", e.what());
        status = 1;
    }
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    const char* error = nullptr;
    bool unknownOption = false;
    if (!parseArguments(argc, argv, options, error, unknownOption))
        return usage(unknownOption ? ("unknown option " + std::string(error)).c_str() : error);

    Progress progress;
    PlexoInitialize_velcg();
    int status = 0;
    // Failures the model can only report (a serialization pass that failed
    // while the model was being destroyed) make the run fail too.
    VelCG::setDiagnosticReporter([&status](const vel::diag::Diagnostic& d) {
        std::fprintf(stderr, "velcg-gen: %s\n", d.message().c_str());
        status = 1;
    });
    // Text or values the library dropped by design are reported, without
    // failing the run.
    const vel::diag::ScopedWarningSink warnings([&progress](const vel::diag::Diagnostic& d) {
        progress.done();
        std::fprintf(stderr, "velcg-gen: warning: %s: %s\n", d.identifier().c_str(), d.message().c_str());
    });
    // Resident memory after the first run, the tenth of the runs and the last.
    const long tenth = std::max(1L, options.repeat / 10);
    std::uint64_t resident[3] = {};
    for (long run = 1; run <= options.repeat && status == 0; ++run) {
        generate(options, progress, status, run == options.repeat);
        if (run == 1) resident[0] = vel::sys::residentBytes();
        if (run == tenth) resident[1] = vel::sys::residentBytes();
        if (run == options.repeat) resident[2] = vel::sys::residentBytes();
    }
    if (options.repeat > 1 && status == 0) {
        const double mib = 1024.0 * 1024.0;
        std::fprintf(stderr,
                     "velcg-gen: %ld runs; resident memory %.1f MiB after run 1, %.1f MiB after run %ld, "
                     "%.1f MiB after run %ld\n",
                     options.repeat, resident[0] / mib, resident[1] / mib, tenth, resident[2] / mib,
                     options.repeat);
    }
    VelCG::PythonRuntime::shutdown();
    PlexoTerminate_velcg();
    return status;
}
