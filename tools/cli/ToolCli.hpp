#pragma once

// The front end the command-line tools share: --help and --version, usage
// errors, and one form for every error a tool reports,
//
//   TOOL: error: [FILE: ]message [identifier]
//
// with the exit status 0 for success, 1 for a failure and 2 for bad usage.
#include <stdexcept>
#include <string>
#include <vector>

namespace VelCG::cli {

struct Tool {
    const char* name;  // "velcg-gen"
    const char* usage; // the usage lines, each ending in a newline
    const char* help;  // what follows the usage under --help
};

// Thrown for bad usage: the tool prints the message and its usage to
// standard error and exits with 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Thrown once a failure has been reported: the tool exits with 1.
struct Reported {};

// Runs body(arguments) and turns what it throws into a report and an exit
// status. --help or --version among the arguments (before "--") prints the
// help or the library's version to standard output and exits with 0. A
// dependency's exception is reported in the tool's own words.
int run(const Tool& tool, int argc, char** argv, int (*body)(const Tool&, const std::vector<std::string>&));

// "TOOL: error: FILE: message [identifier]" on standard error; file may be
// empty.
void error(const Tool& tool, const std::string& file, const std::string& message,
           const std::string& identifier = {});
void warning(const Tool& tool, const std::string& message, const std::string& identifier = {});

// The value of option `name` at arguments[i + 1]; throws UsageError when
// it is missing.
const std::string& optionValue(const std::vector<std::string>& arguments, std::size_t& i);

} // namespace VelCG::cli
