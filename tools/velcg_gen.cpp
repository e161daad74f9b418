// Generates code for a model described in a file: loads the description,
// creates the repository with the files it describes, runs the Python
// template on them, writes every file the template did not write itself,
// and records the model in codedescriptor.strata in both passes (as the
// switch VelCGDirectEmitSerialize says). Everything lands in a staging
// directory first and reaches the output directory only when the whole run
// succeeded, each file only when its bytes changed (see OutputDirectory).
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
#include <string>
#include <vector>

#include "cli/ToolCli.hpp"
#include "gen/OutputDirectory.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/i18n/Text.hpp"
#include "vel/io/Stream.hpp"
#include "vel/sys/Process.hpp"
#include "velcg/velcg.hpp"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using VelCG::gen::OutputDirectory;
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

// Writes every file the template left unwritten (and did not filter out)
// into the staging directory, section by section in section order, through
// the script bridge. Failures name the file as it will be in the output
// directory.
void writeFiles(VelCG::VelCGFileRepository& repository, const OutputDirectory& out, Progress& progress) {
    VelCG::FileRepScrivBridge& bridge = repository.scrivBridge();
    const int count = static_cast<int>(repository.getFileList().size());
    for (int i = 0; i < count; ++i) {
        const VelCG::VelCGFile& file = *repository.getFileList()[static_cast<std::size_t>(i)];
        if (file.isWrittenToDisk() || file.getFiltered()) continue;
        const std::string& name = file.getNameAscii();
        const std::string shown = (out.path() / name).string();
        progress.phase("writing files " + std::to_string(i + 1) + "/" + std::to_string(count));
        if (name.find('/') != std::string::npos || !OutputDirectory::isPlainRelativePath(name))
            vel::diag::throwErrorText("VelCG:Gen:BadFileName",
                                      "'" + name +
                                          "' is not a plain file name inside the output "
                                          "directory; velcg-gen does not write it.");
        const fs::path path = out.staging() / fs::u8path(name);
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(path.string().c_str(), "wb"),
                                                               &std::fclose);
        if (!stream)
            vel::diag::throwErrorText("VelCG:Gen:CannotWrite",
                                      "Cannot write '" + shown + "': " + std::strerror(errno) + ".");
        try {
            for (int kind = VelCG::BANNER_SECTION; kind <= VelCG::USERBOTTOM_SECTION; ++kind) {
                const std::string section =
                    VelCG::getScrivSectionNameFromEnum(static_cast<VelCG::VelCGFileSectionKind>(kind));
                if (section.empty()) continue;
                bridge.appendMissingTokens(i, section);
                bridge.writeSection(i, section, stream.get());
            }
        } catch (const vel::diag::Exception& e) {
            vel::diag::throwErrorText(e.identifier(), shown + ": " + e.diagnostic().message());
        }
        if (std::fclose(stream.release()) != 0)
            vel::diag::throwErrorText("VelCG:Gen:CannotWrite",
                                      "Cannot finish writing '" + shown + "': " + std::strerror(errno) + ".");
        bridge.setAttribute(i, "WrittenToDisk", true);
    }
}

std::size_t blockCount(const VelCG::CGModel& model) {
    std::size_t n = 0;
    for (const VelCG::GraphicalSubsystem* s : model.getBlockHierarchyMap()->getSubsystems())
        n += s->getBlocks().size();
    return n;
}

double seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

// A path in Make's depfile syntax.
std::string depfilePath(const fs::path& path) {
    const std::string text = path.generic_string();
    if (text.find_first_of("\n\r") != std::string::npos)
        vel::diag::throwErrorText("VelCG:Gen:BadDependency",
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
void writeDepfile(const Options& options, const OutputDirectory& out, std::vector<std::string> read) {
    read.push_back(fs::absolute(options.model).lexically_normal().string());
    read.push_back(fs::absolute(options.templatePath).lexically_normal().string());
    std::sort(read.begin(), read.end());
    read.erase(std::unique(read.begin(), read.end()), read.end());
    const std::string outputs = fs::absolute(out.path()).lexically_normal().string();
    std::string text = depfilePath(fs::absolute(out.path() / OutputDirectory::kManifestName)) + ":";
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
            vel::diag::throwErrorText("VelCG:Gen:CannotWrite", "Cannot write '" + options.depfile + "'.");
    }
    std::error_code ec;
    fs::rename(temporary, options.depfile, ec);
    if (ec)
        vel::diag::throwErrorText("VelCG:Gen:CannotWrite",
                                  "Cannot write '" + options.depfile + "': " + ec.message() + ".");
}

// Prints what the run changed, or with --check what it would change.
// Returns the exit status.
int report(const Options& options, const OutputDirectory& out, const std::vector<Change>& changes, int level,
           std::size_t blocks) {
    std::size_t written = 0, unchanged = 0, removed = 0;
    const char* descriptorState = nullptr;
    for (const Change& c : changes) {
        const bool isDescriptor = c.name == VelCG::CGModel::kCodeDescriptorFileName;
        const std::string shown = (out.path() / fs::u8path(c.name)).string();
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
        std::printf("velcg-gen: %s: %s\n", out.path().string().c_str(),
                    outdated ? "out of date" : ("up to date; " + descriptor).c_str());
        return outdated ? 1 : 0;
    }
    std::printf("velcg-gen: %zu file(s) written, %zu unchanged, %zu removed; %s\n", written, unchanged,
                removed, descriptor.c_str());
    return 0;
}

// One generation from the description to the committed output directory.
// Returns the exit status; failures are thrown.
int generate(const Options& options, Progress& progress, const int& passStatus, bool last) {
    OutputDirectory out(
        options.outputDirectory, options.wait,
        [&] {
            if (progress.enabled())
                std::fprintf(stderr, "velcg-gen: waiting for another run generating into '%s'\n",
                             options.outputDirectory.c_str());
        },
        !options.check);
    const std::wstring staging = vel::i18n::toWide(out.staging().string());

    progress.phase("loading " + options.model);
    const Clock::time_point start = Clock::now();
    VelCG::ModelDescription description = VelCG::ModelDescription::load(options.model);
    VelCG::CGModel& model = *description.model;
    const Clock::time_point loaded = Clock::now();

    // The model is complete: its first pass runs while the template does
    // (on a background thread at the switch's default).
    model.serializeModel(staging);
    const Clock::time_point firstPass = Clock::now();
    VelCG::VelCGFileRepository repository;
    description.createFiles(repository);

    progress.phase("running " + options.templatePath);
    VelCG::PythonRuntime::Globals globals;
    globals.add("model", model)
        .add("repository", repository)
        .add("outputDirectory", out.staging().string())
        .add("options", options.defines);
    std::vector<std::string> dependencies;
    VelCG::PythonRuntime::runTemplate(options.templatePath, globals, dependencies);
    const Clock::time_point templated = Clock::now();

    writeFiles(repository, out, progress);
    const Clock::time_point wrote = Clock::now();

    progress.phase("serializing " + std::to_string(blockCount(model)) + " blocks");
    model.serializeModelAfterScriv(staging);
    // Destroying the model waits for the last pass and reports its failures.
    const std::size_t blocks = blockCount(model);
    description.model.reset();
    const Clock::time_point serialized = Clock::now();
    progress.done();
    if (passStatus != 0) throw VelCG::cli::Reported();

    const std::vector<Change> changes = options.check ? out.compare() : out.commit();
    if (!options.depfile.empty()) writeDepfile(options, out, std::move(dependencies));
    const int level = VELFEAT_VelCGDirectEmitSerialize.peek();
    const int status = last ? report(options, out, changes, level, blocks) : 0;
    if (options.times && last)
        std::fprintf(stderr, "velcg-gen: load %.3f s, template %.3f s, write %.3f s, serialize %.3f s\n",
                     seconds(loaded - start), seconds(templated - firstPass), seconds(wrote - templated),
                     seconds((firstPass - loaded) + (serialized - wrote)));
    return status;
}

int generateAll(const VelCG::cli::Tool& tool, const std::vector<std::string>& arguments) {
    const Options options = parseArguments(arguments);
    // A mistyped switch is refused before anything runs.
    VELFEAT_VelCGDirectEmitSerialize.checkOverride();

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
