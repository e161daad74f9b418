#pragma once

// Runs a command-line tool as a process, its standard output and error
// captured. POSIX only, like ChildProcess.hpp.

#if !defined(_WIN32)

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include "ChildProcess.hpp"
#include "TempDir.hpp"

namespace testing_support {

struct ToolRun {
    int status = -1; // the exit status, or -1 when the tool did not exit normally
    std::string out;
    std::string err;
};

// Runs tool with args in a child set up as asked, its standard output and
// error captured in files of dir, which this process creates: the tool
// may run as a user that could not.
inline ToolRun runTool(const std::string& tool, const std::filesystem::path& dir,
                       const std::vector<std::string>& args, const ChildSetup& setup = {}) {
    std::vector<std::string> argStrings = {tool};
    argStrings.insert(argStrings.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& arg : argStrings) argv.push_back(arg.data());
    argv.push_back(nullptr);
    const int out = open((dir / "stdout").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int err = open((dir / "stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const std::string ended = waitForChild(startChild(setup, [&] {
        if (out >= 0 && err >= 0 && dup2(out, 1) == 1 && dup2(err, 2) == 2) execv(argv[0], argv.data());
        _exit(127);
    }));
    close(out);
    close(err);
    return {ended.rfind("exit ", 0) == 0 ? std::stoi(ended.substr(5)) : -1, fileBytes(dir / "stdout"),
            fileBytes(dir / "stderr")};
}

} // namespace testing_support

#endif
