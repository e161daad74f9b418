#include "ToolCli.hpp"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <system_error>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/Version.hpp"

namespace VelCG::cli {

namespace {

// A filesystem error in words a user can act on: the operation's subject
// and the system's reason, without the library's function name.
std::string explain(const std::filesystem::filesystem_error& e) {
    std::string text = e.code().message();
    if (!e.path1().empty()) text = "'" + e.path1().string() + "': " + text;
    if (!e.path2().empty()) text += " (and '" + e.path2().string() + "')";
    return text;
}

} // namespace

void error(const Tool& tool, const std::string& file, const std::string& message,
           const std::string& identifier) {
    std::string line = std::string(tool.name) + ": error: ";
    if (!file.empty()) line += file + ": ";
    line += message;
    if (!identifier.empty()) line += " [" + identifier + "]";
    std::fprintf(stderr, "%s\n", line.c_str());
}

void warning(const Tool& tool, const std::string& message, const std::string& identifier) {
    std::fprintf(stderr, "%s: warning: %s%s\n", tool.name, message.c_str(),
                 identifier.empty() ? "" : (" [" + identifier + "]").c_str());
}

const std::string& optionValue(const std::vector<std::string>& arguments, std::size_t& i) {
    if (i + 1 >= arguments.size()) throw UsageError(arguments[i] + " needs a value");
    return arguments[++i];
}

int run(const Tool& tool, int argc, char** argv, int (*body)(const Tool&, const std::vector<std::string>&)) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    for (const std::string& a : arguments) {
        if (a == "--") break;
        if (a == "--help" || a == "-h") {
            std::printf("%s%s", tool.usage, tool.help);
            return 0;
        }
        if (a == "--version") {
            std::printf("%s %s\n", tool.name, VELCG_VERSION_STRING);
            return 0;
        }
    }
    try {
        return body(tool, arguments);
    } catch (const UsageError& e) {
        error(tool, {}, e.what());
        std::fputs(tool.usage, stderr);
        return 2;
    } catch (const Reported&) {
    } catch (const vel::diag::Exception& e) {
        error(tool, {}, e.diagnostic().message(), e.identifier());
    } catch (const std::bad_alloc&) {
        error(tool, {}, "out of memory");
    } catch (const std::filesystem::filesystem_error& e) {
        error(tool, {}, explain(e));
    } catch (const std::system_error& e) {
        error(tool, {}, e.code().message());
    } catch (const std::exception& e) {
        error(tool, {}, std::string("unexpected failure: ") + e.what());
    }
    return 1;
}

} // namespace VelCG::cli
