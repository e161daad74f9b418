// Reads a code descriptor store ("codedescriptor.strata") without changing
// it: prints the stored model as an indented text tree or as JSON, or checks
// that the file is a sound store of this program's format. A store left by
// a writer that stopped mid-transaction is first rolled back to its last
// commit, with a warning, where the file and its directory may be written.
//
//   velcg-descriptor dump [--json] FILE
//   velcg-descriptor check FILE
//
// Only the result goes to standard output, and only once it is complete.
// Problems go to standard error in the tools' common form,
// "velcg-descriptor: error: FILE: message [identifier]".
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/ToolCli.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Dump.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace {

using coder::Repository;
using coder::RepositoryOptions;
using coder::descriptor::dumpJson;
using coder::descriptor::dumpText;

const VelCG::cli::Tool kTool = {
    "velcg-descriptor",
    "usage: velcg-descriptor dump [--json] FILE\n"
    "       velcg-descriptor check FILE\n"
    "       velcg-descriptor --help | --version\n",
    "\n"
    "Reads a code descriptor store without changing what it holds; a store left by\n"
    "a writer that stopped mid-transaction is first rolled back to its last commit,\n"
    "with a warning, where the file and its directory may be written.\n"
    "\n"
    "  dump FILE         the stored model as an indented text tree\n"
    "  dump --json FILE  the stored model as JSON: each record an object with its\n"
    "                    \"kind\", its fields and its sequences by name\n"
    "  check FILE        verifies the format version, the file's integrity, every\n"
    "                    reference and position, and that the model reads back;\n"
    "                    prints \"FILE: ok\"\n"
    "\n"
    "Exit status: 0 done, 1 the file cannot be read or is unsound, 2 bad usage.\n"};

Repository openForReading(const std::string& file) {
    RepositoryOptions options;
    options.access = RepositoryOptions::Access::ReadOnly;
    // Opening rolls back the transaction of a writer that stopped, when the
    // file may be written; the warning says so.
    const vel::diag::ScopedWarningSink notices([&file](const vel::diag::Diagnostic& d) {
        VelCG::cli::warning(kTool, file + ": " + d.message(), d.identifier());
    });
    return Repository(std::filesystem::u8path(file), options);
}

// Writes the complete result; a failing standard output is a failure too.
int emit(const VelCG::cli::Tool& tool, const std::string& file, const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        VelCG::cli::error(tool, file, std::string("cannot write the output: ") + std::strerror(errno));
        return 1;
    }
    return 0;
}

int dump(const VelCG::cli::Tool& tool, const std::string& file, bool json) {
    std::string out;
    {
        Repository repository = openForReading(file);
        out = json ? dumpJson(repository) : dumpText(repository);
    }
    return emit(tool, file, out);
}

int check(const VelCG::cli::Tool& tool, const std::string& file) {
    // Opening has refused a format this program does not read.
    Repository repository = openForReading(file);
    const std::vector<std::string> problems = repository.checkIntegrity();
    for (const std::string& problem : problems) VelCG::cli::error(tool, file, problem);
    if (!problems.empty()) return 1;
    // Walks the whole model: a value of the wrong type, a missing record or
    // nesting too deep shows here.
    dumpText(repository);
    return emit(tool, file, file + ": ok\n");
}

int runTool(const VelCG::cli::Tool& tool, const std::vector<std::string>& args) {
    if (args.empty()) throw VelCG::cli::UsageError("missing a command");
    const std::string command = args[0];
    if (command != "dump" && command != "check")
        throw VelCG::cli::UsageError("unknown command '" + command + "'");
    bool json = false;
    std::vector<std::string> files;
    bool options = true;
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (options && args[i] == "--") {
            options = false;
        } else if (options && command == "dump" && args[i] == "--json") {
            json = true;
        } else if (options && args[i].size() > 1 && args[i][0] == '-') {
            throw VelCG::cli::UsageError("unknown option " + args[i]);
        } else {
            files.push_back(args[i]);
        }
    }
    if (files.size() != 1) throw VelCG::cli::UsageError(command + " takes one FILE");

    const std::string& file = files[0];
    try {
        return command == "dump" ? dump(tool, file, json) : check(tool, file);
    } catch (const vel::diag::Exception& e) {
        VelCG::cli::error(tool, file, e.diagnostic().message(), e.identifier());
    } catch (const std::exception& e) {
        VelCG::cli::error(tool, file, e.what());
    }
    return 1;
}

} // namespace

int main(int argc, char** argv) { return VelCG::cli::run(kTool, argc, argv, &runTool); }
