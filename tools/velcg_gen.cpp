// Generates code for a model described in a file: loads the description
// and runs the Python template in a VelCG::Generation, which writes every
// file the template did not write itself and records the model in
// codedescriptor.strata in both passes (as the switch
// VelCGDirectEmitSerialize says). Everything lands in a staging directory
// first and reaches the output directory only when the whole run
// succeeded, each file only when its bytes changed.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Messages.hpp"
#include "cli/ToolCli.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/io/Stream.hpp"
#include "vel/sys/Process.hpp"
#include "velcg/PythonRuntime.hpp"
#include "velcg/velcg.hpp"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using VelCG::OutputDirectory;
using Change = OutputDirectory::Change;

const VelCG::cli::Tool kTool = {
    "velcg-gen",
    "usage: velcg-gen MODEL.json TEMPLATE.py -o OUTDIR [-D KEY=VALUE]... [--depfile FILE]\n"
    "                 [--check] [--quiet] [--strict] [--no-wait] [--times] [--repeat N]\n"
    "       velcg-gen --help | --version\n",
    "\n"
    "Generates the files of the model described in MODEL.json with the Python\n"
    "template TEMPLATE.py, and its code descriptor codedescriptor.strata.\n"
    "\n"
    "  -o OUTDIR        the output directory, created when missing; a file is\n"
    "                   replaced only when its bytes change, and a run that fails\n"
    "                   leaves the directory as it was\n"
    "  -D KEY=VALUE     an entry of the dict `options` that the template receives\n"
    "                   (repeatable; a later KEY wins)\n"
    "  --depfile FILE   write, in Make's syntax, the files the outputs depend on:\n"
    "                   the description, the template, the modules it imported\n"
    "                   from outside the standard library and the files it read\n"
    "  --check          write nothing; list each file that would change and exit\n"
    "                   with 1 when any would\n"
    "  --quiet          print nothing on success\n"
    "  --strict         fail (exit status 1) on any warning; one raised before\n"
    "                   the files are committed leaves OUTDIR as it was\n"
    "  --no-wait        fail at once when another run generates into OUTDIR\n"
    "                   (by default the run waits for it)\n"
    "  --times          print how long each phase took\n"
    "  --repeat N       run the whole generation N times in this process and\n"
    "                   report resident memory (a soak test)\n"
    "\n"
    "The template's globals: model, repository, outputDirectory (where the\n"
    "template writes files itself; velcg-gen moves them into OUTDIR), options.\n"
    "VEL_FEATURE_VelCGDirectEmitSerialize=LEVEL chooses what the descriptor\n"
    "holds: 0 none, 1 (default) and 2 the model, 3 also marks async-queue\n"
    "sources, 4 also systems and root inputs.\n"
    "\n"
    "Exit status: 0 done (with --check: nothing would change), 1 failure (with\n"
    "--check: a file would change), 2 bad usage.\n"};

struct Options {
    std::string model;
    std::string templatePath;
    std::string outputDirectory;
    std::string depfile;
    std::vector<std::pair<std::string, std::string>> defines;
    bool check = false;
    bool quiet = false;
    bool strict = false;
    bool wait = true;
    bool times = false;
    long repeat = 1;
};

Options parseArguments(const std::vector<std::string>& arguments) {
    using VelCG::cli::optionValue;
    using VelCG::cli::UsageError;
    Options options;
    std::vector<std::string> positional;
    bool optionsEnd = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        if (optionsEnd || a.empty() || a[0] != '-' || a == "-") {
            positional.push_back(a);
        } else if (a == "--") {
            optionsEnd = true;
        } else if (a == "-o") {
            options.outputDirectory = optionValue(arguments, i);
        } else if (a == "-D" || (a.size() > 2 && a.compare(0, 2, "-D") == 0)) {
            const std::string define = a == "-D" ? optionValue(arguments, i) : a.substr(2);
            const std::size_t equals = define.find('=');
            if (equals == 0 || equals == std::string::npos)
                throw UsageError("-D needs KEY=VALUE, not '" + define + "'");
            options.defines.emplace_back(define.substr(0, equals), define.substr(equals + 1));
        } else if (a == "--depfile") {
            options.depfile = optionValue(arguments, i);
        } else if (a == "--check") {
            options.check = true;
        } else if (a == "--quiet" || a == "-q") {
            options.quiet = true;
        } else if (a == "--strict") {
            options.strict = true;
        } else if (a == "--no-wait") {
            options.wait = false;
        } else if (a == "--times") {
            options.times = true;
        } else if (a == "--repeat") {
            const std::string& count = optionValue(arguments, i);
            char* end = nullptr;
            options.repeat = std::strtol(count.c_str(), &end, 10);
            if (count.empty() || *end != '\0' || options.repeat < 1 || options.repeat > 1000000)
                throw UsageError("--repeat needs a count from 1 to 1000000, not '" + count + "'");
        } else {
            throw UsageError("unknown option " + a);
        }
    }
    if (positional.size() != 2)
        throw UsageError("expected a model description and a template, got " +
                         std::to_string(positional.size()) + " file name(s)");
    if (options.outputDirectory.empty()) throw UsageError("missing -o OUTDIR");
    if (options.check && !options.depfile.empty())
        throw UsageError("--check writes nothing, so no --depfile");
    options.model = positional[0];
    options.templatePath = positional[1];
    return options;
}

// Progress for people watching a long run; silent when standard error is a
// file or a pipe.
class Progress {
public:
    Progress() : enabled_(vel::io::isTerminal(stderr)) {}
    bool enabled() const { return enabled_; }
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

double seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

// A path in Make's depfile syntax.
std::string depfilePath(const fs::path& path) {
    const std::string text = path.generic_string();
    if (text.find_first_of("\n\r") != std::string::npos)
        vel::diag::throwErrorText(VelCG::messages::Gen::BadDependency,
                                  "The template read '" + text + "', whose name a depfile cannot hold.");
    std::string out;
    for (char c : text) {
        if (c == ' ' || c == '#' || c == '\\' || c == ':') out += '\\';
        if (c == '$') out += '$';
        out += c;
    }
    return out;
}

// The depfile: the manifest (the first output of a build step) depends on
// every file the run read.
void writeDepfile(const Options& options, const fs::path& directory, std::vector<std::string> read) {
    read.push_back(fs::absolute(options.model).lexically_normal().string());
    read.push_back(fs::absolute(options.templatePath).lexically_normal().string());
    std::sort(read.begin(), read.end());
    read.erase(std::unique(read.begin(), read.end()), read.end());
    const std::string outputs = fs::absolute(directory).lexically_normal().string();
    std::string text = depfilePath(fs::absolute(directory / OutputDirectory::kManifestName)) + ":";
    for (const std::string& file : read) {
        // What the template read back of its own output is no input.
        if (file.compare(0, outputs.size(), outputs) == 0 &&
            (file.size() == outputs.size() || file[outputs.size()] == '/'))
            continue;
        text += " \\\n  " + depfilePath(file);
    }
    text += "\n";
    const fs::path temporary = options.depfile + ".tmp";
    {
        std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
        stream << text;
        stream.flush();
        if (!stream)
            vel::diag::throwError(VelCG::messages::FileRepScrivBridge::FileWriteFailed,
                                  {options.depfile, "the stream reported an error"});
    }
    std::error_code ec;
    fs::rename(temporary, options.depfile, ec);
    if (ec)
        vel::diag::throwError(VelCG::messages::FileRepScrivBridge::FileWriteFailed,
                              {options.depfile, ec.message()});
}

// Prints what the run changed, or with --check what it would change.
// Returns the exit status.
int report(const Options& options, const fs::path& directory, const VelCG::Generation::Result& result) {
    const int level = result.level;
    const std::size_t blocks = result.blocks;
    std::size_t written = 0, unchanged = 0, removed = 0;
    const char* descriptorState = nullptr;
    for (const Change& c : result.changes) {
        const bool isDescriptor = c.name == VelCG::CGModel::kCodeDescriptorFileName;
        const std::string shown = (directory / fs::u8path(c.name)).string();
        switch (c.kind) {
            case Change::Kind::Added:
            case Change::Kind::Changed:
                if (options.check)
                    std::printf("%s would be written\n", shown.c_str());
                else if (!options.quiet)
                    std::printf("wrote %s\n", shown.c_str());
                if (isDescriptor)
                    descriptorState = "written";
                else
                    ++written;
                break;
            case Change::Kind::Unchanged:
                if (isDescriptor)
                    descriptorState = "unchanged";
                else
                    ++unchanged;
                break;
            case Change::Kind::Removed:
                if (options.check)
                    std::printf("%s would be removed\n", shown.c_str());
                else if (!options.quiet)
                    std::printf("removed %s\n", shown.c_str());
                ++removed;
                break;
        }
    }
    const bool outdated = written + removed != 0 || (descriptorState && *descriptorState == 'w');
    if (options.quiet && !(options.check && outdated)) return options.check && outdated ? 1 : 0;
    std::string descriptor =
        descriptorState
            ? std::string("descriptor ") +
                  (options.check && *descriptorState == 'w' ? "would be written" : descriptorState) +
                  " (level " + std::to_string(level) + ", " + std::to_string(blocks) + " blocks)"
            : "no descriptor (level " + std::to_string(level) + ")";
    if (options.check) {
        std::printf("velcg-gen: %s: %s\n", directory.string().c_str(),
                    outdated ? "out of date" : ("up to date; " + descriptor).c_str());
        return outdated ? 1 : 0;
    }
    std::printf("velcg-gen: %zu file(s) written, %zu unchanged, %zu removed; %s\n", written, unchanged,
                removed, descriptor.c_str());
    return 0;
}

// The model of a single run, never destroyed (see generate).
VelCG::ModelDescription* keptUntilExit = nullptr;

// One generation from the description to the committed output directory.
// Returns the exit status; failures are thrown.
int generate(const Options& options, Progress& progress, const int& passStatus, bool last) {
    VelCG::Generation::Settings settings;
    settings.outputDirectory = options.outputDirectory;
    settings.check = options.check;
    settings.wait = options.wait;
    settings.onWait = [&] {
        if (progress.enabled())
            std::fprintf(stderr, "velcg-gen: waiting for another run generating into '%s'\n",
                         options.outputDirectory.c_str());
    };
    progress.phase("loading " + options.model);
    const Clock::time_point start = Clock::now();
    // The description loads on another core while the interpreter starts on
    // this thread, which runs the template. A failure to start is the
    // template run's to report.
    std::optional<VelCG::ModelDescription> description;
    std::exception_ptr loadFailure;
    std::thread loader([&] {
        try {
            description.emplace(VelCG::ModelDescription::load(options.model));
        } catch (...) {
            loadFailure = std::current_exception();
        }
    });
    try {
        VelCG::PythonRuntime::start();
    } catch (...) {
    }
    loader.join();
    if (loadFailure) std::rethrow_exception(loadFailure);
    const Clock::time_point loaded = Clock::now();
    // Starts the first pass.
    VelCG::Generation run(std::move(*description), settings);
    const Clock::time_point firstPass = Clock::now();

    progress.phase("running " + options.templatePath);
    VelCG::PythonRuntime::Globals globals;
    globals.add("model", run.model())
        .add("repository", run.repository())
        .add("outputDirectory", run.stagingDirectory().string())
        .add("options", options.defines)
        .addJson("data", run.description().templateData);
    std::vector<std::string> dependencies;
    VelCG::PythonRuntime::runTemplate(options.templatePath, globals, dependencies);
    const Clock::time_point templated = Clock::now();

    progress.phase("writing files and serializing");
    run.complete();
    progress.done();
    // A pass that failed, or with --strict a warning, keeps the outputs out.
    if (passStatus != 0) throw VelCG::cli::Reported();
    const VelCG::Generation::Result result = run.commit();

    if (!options.depfile.empty()) writeDepfile(options, run.outputDirectory(), std::move(dependencies));
    const int status = last ? report(options, run.outputDirectory(), result) : 0;
    if (options.times && last)
        std::fprintf(stderr, "velcg-gen: load %.3f s, template %.3f s, write %.3f s, serialize %.3f s\n",
                     seconds(loaded - start), seconds(templated - firstPass), seconds(result.writing),
                     seconds((firstPass - loaded) + result.serializing));
    // A single run leaves its model to the end of the process: freeing it
    // object by object takes longer than anything after the commit (about a
    // tenth of a run at 100,000 blocks), and the system takes the memory back
    // at once. Both passes have ended and the outputs are committed.
    if (options.repeat == 1) keptUntilExit = new VelCG::ModelDescription(run.releaseDescription());
    return status;
}

int generateAll(const VelCG::cli::Tool& tool, const std::vector<std::string>& arguments) {
    const Options options = parseArguments(arguments);
    Progress progress;
    PlexoInitialize_velcg();
    struct Terminate {
        ~Terminate() {
            VelCG::PythonRuntime::shutdown();
            PlexoTerminate_velcg();
        }
    } terminate;
    int passStatus = 0;
    // Failures the model can only report (a serialization pass that failed
    // while the model was being destroyed) make the run fail too.
    VelCG::setDiagnosticReporter([&](const vel::diag::Diagnostic& d) {
        progress.done();
        VelCG::cli::error(tool, {}, d.message(), d.identifier());
        passStatus = 1;
    });
    // Text or values the library dropped by design are reported, without
    // failing the run unless --strict: then a warning is an error, and one
    // raised before the outputs are committed keeps them out.
    const vel::diag::ScopedWarningSink warnings([&](const vel::diag::Diagnostic& d) {
        progress.done();
        if (!options.strict) return VelCG::cli::warning(tool, d.message(), d.identifier());
        VelCG::cli::error(tool, {}, d.message(), d.identifier());
        passStatus = 1;
    });
    // Resident memory after the first run, the tenth of the runs and the last.
    const long tenth = std::max(1L, options.repeat / 10);
    std::uint64_t resident[3] = {};
    int status = 0;
    for (long run = 1; run <= options.repeat && status == 0; ++run) {
        try {
            status = generate(options, progress, passStatus, run == options.repeat);
        } catch (...) {
            progress.done();
            throw;
        }
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
    return passStatus != 0 ? 1 : status;
}

} // namespace

int main(int argc, char** argv) { return VelCG::cli::run(kTool, argc, argv, &generateAll); }
