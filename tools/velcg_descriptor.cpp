// Reads a code descriptor store ("codedescriptor.strata") without changing
// it: prints the stored model as an indented text tree or as JSON, or checks
// that the file is a sound store of this program's format. A store left by
// a writer that stopped mid-transaction is first rolled back to its last
// commit, with a warning, where the file and its directory may be written.
//
//   velcg_descriptor dump [--json] FILE
//   velcg_descriptor check FILE
//
// Only the result goes to standard output, and only once it is complete.
// Problems go to standard error in the form "FILE: error: message", a
// diagnostic followed by its identifier in brackets. Exit status: 0 done,
// 1 the file could not be read or is unsound, 2 bad usage.
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "coder/Repository.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "coder/descriptor/Dump.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"

namespace {

using coder::Repository;
using coder::RepositoryOptions;
using namespace coder::descriptor;
using Json = nlohmann::ordered_json;

const char* const kUsage =
    "usage: velcg_descriptor dump [--json] FILE\n"
    "       velcg_descriptor check FILE\n"
    "       velcg_descriptor --help\n";

const char* const kHelp =
    "\n"
    "Reads a code descriptor store; the file is opened for reading only.\n"
    "\n"
    "  dump FILE         the stored model as an indented text tree\n"
    "  dump --json FILE  the stored model as JSON: each record an object with its\n"
    "                    \"kind\", its fields and its sequences by name\n"
    "  check FILE        verifies the format version, the file's integrity, every\n"
    "                    reference and position, and that the model reads back;\n"
    "                    prints \"FILE: ok\"\n"
    "\n"
    "Exit status: 0 done, 1 the file cannot be read or is unsound, 2 bad usage.\n";

int usage() {
    std::fputs(kUsage, stderr);
    return 2;
}

// The same limit as the text dump: deep enough for any real model, while a
// damaged store cannot exhaust the stack.
constexpr std::size_t kMaxDepth = 512;

// The model as JSON. A record is an object: "kind", then its fields by name
// (null for an absent field or an unset reference, a nested object for a set
// one), then its sequences by name as arrays. A record that refers back to
// one of its ancestors is written as {"kind": ..., "cycle": true}. A real
// that is not finite is written as the string "Infinity", "-Infinity" or
// "NaN".
class JsonDumper {
public:
    Json record(const Object& object) {
        Json out = Json::object();
        out["kind"] = object.getKind()->name;
        for (const Object& ancestor : path_) {
            if (ancestor == object) {
                out["cycle"] = true;
                return out;
            }
        }
        if (path_.size() >= kMaxDepth)
            vel::diag::throwError("coder:descriptor:TooDeep", {std::to_string(kMaxDepth)});
        path_.push_back(object);
        const RecordKind& kind = *object.getKind();
        const std::vector<FieldValue> fields = object.getFields();
        for (std::size_t i = 0; i < kind.fields.size(); ++i) out[kind.fields[i].name] = value(fields[i]);
        for (std::size_t s = 0; s < kind.sequences.size(); ++s) {
            Json elements = Json::array();
            const std::size_t size = object.getSequenceSize(s);
            for (std::size_t p = 0; p < size; ++p) elements.push_back(value(object.getSequenceElement(s, p)));
            out[kind.sequences[s].name] = std::move(elements);
        }
        path_.pop_back();
        return out;
    }

private:
    Json value(const FieldValue& field) {
        if (auto* b = std::get_if<bool>(&field)) return *b;
        if (auto* n = std::get_if<std::int64_t>(&field)) return *n;
        if (auto* r = std::get_if<double>(&field)) {
            if (std::isfinite(*r)) return *r;
            // JSON has no numbers for these; null would read as absent.
            return std::isnan(*r) ? "NaN" : *r > 0 ? "Infinity" : "-Infinity";
        }
        if (auto* t = std::get_if<ustring>(&field)) return vel::i18n::toUtf8(*t);
        if (auto* o = std::get_if<Object>(&field)) return o->isNull() ? Json() : record(*o);
        return nullptr;
    }

    std::vector<Object> path_;
};

Repository openForReading(const std::string& file) {
    RepositoryOptions options;
    options.access = RepositoryOptions::Access::ReadOnly;
    // Opening rolls back the transaction of a writer that stopped, when the
    // file may be written; the warning says so.
    const vel::diag::ScopedWarningSink notices([&file](const vel::diag::Diagnostic& d) {
        std::fprintf(stderr, "%s: warning: %s [%s]\n", file.c_str(), d.message().c_str(),
                     d.identifier().c_str());
    });
    return Repository(std::filesystem::u8path(file), options);
}

void reportError(const std::string& file, const std::string& message) {
    std::fprintf(stderr, "%s: error: %s\n", file.c_str(), message.c_str());
}

void reportDiagnostic(const std::string& file, const vel::diag::Exception& e) {
    reportError(file, e.diagnostic().message() + " [" + e.identifier() + "]");
}

// Writes the complete result; a failing standard output is a failure too.
int emit(const std::string& file, const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        reportError(file, std::string("cannot write the output: ") + std::strerror(errno));
        return 1;
    }
    return 0;
}

int dump(const std::string& file, bool json) {
    std::string out;
    {
        Repository repository = openForReading(file);
        if (json) {
            coder::ReadTransaction view(repository);
            JsonDumper dumper;
            out = dumper.record(RepositoryHelper::getModel(repository)).dump(2) + "\n";
        } else {
            out = dumpText(repository);
        }
    }
    return emit(file, out);
}

int check(const std::string& file) {
    // Opening has refused a format this program does not read.
    Repository repository = openForReading(file);
    const std::vector<std::string> problems = repository.checkIntegrity();
    for (const std::string& problem : problems) reportError(file, problem);
    if (!problems.empty()) return 1;
    // Walks the whole model: a value of the wrong type, a missing record or
    // nesting too deep shows here.
    dumpText(repository);
    return emit(file, file + ": ok\n");
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    for (const std::string& arg : args) {
        if (arg == "--") break;
        if (arg == "--help" || arg == "-h") {
            std::fputs(kUsage, stdout);
            std::fputs(kHelp, stdout);
            return 0;
        }
    }
    if (args.empty()) return usage();
    const std::string command = args[0];
    bool json = false;
    std::vector<std::string> files;
    bool options = true;
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (options && args[i] == "--") {
            options = false;
        } else if (options && command == "dump" && args[i] == "--json") {
            json = true;
        } else if (options && args[i].size() > 1 && args[i][0] == '-') {
            return usage();
        } else {
            files.push_back(args[i]);
        }
    }
    if ((command != "dump" && command != "check") || files.size() != 1) return usage();

    const std::string& file = files[0];
    try {
        return command == "dump" ? dump(file, json) : check(file);
    } catch (const vel::diag::Exception& e) {
        reportDiagnostic(file, e);
    } catch (const std::exception& e) {
        reportError(file, e.what());
    }
    return 1;
}
