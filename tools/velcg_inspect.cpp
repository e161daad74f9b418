// Lists what the library shows to a host: the classes of the package "VelCG"
// with their properties and methods, the Python module's own classes, the
// feature switches, and the reference for template writers. Everything
// about the classes comes from the object system's public client, as a
// script runtime sees it, and from the library's reference tables
// (velcg/TemplateReference.hpp).
//
//   velcg-inspect classes [--markdown | --python] [--output FILE]
//   velcg-inspect globals [--output FILE]
//   velcg-inspect reference [--output FILE]
//   velcg-inspect features
//
// --python prints the type stub (.pyi) of the Python module velcg, globals
// the stub of the template globals (velcg_template.pyi), reference the page
// docs/templates.md; --output writes to FILE, and only once it is complete.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/ToolCli.hpp"
#include "inspect/ClassListing.hpp"
#include "inspect/ReferenceWriter.hpp"
#include "inspect/StubWriter.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/TemplateReference.hpp"

namespace {

using korb::MethodInfo;
using korb::PropertyInfo;
using VelCG::inspect::ClassListing;
using VelCG::inspect::listPackage;

const VelCG::cli::Tool kTool = {
    "velcg-inspect",
    "usage: velcg-inspect classes [--markdown | --python] [--output FILE]\n"
    "       velcg-inspect globals [--output FILE]\n"
    "       velcg-inspect reference [--output FILE]\n"
    "       velcg-inspect features\n"
    "       velcg-inspect --help | --version\n",
    "\n"
    "Lists what the library shows to scripts.\n"
    "\n"
    "  classes            the classes of the package with their properties and\n"
    "                     methods and the Python module's own classes (the\n"
    "                     bridge), as text, Markdown (--markdown) or the type\n"
    "                     stub of the Python module velcg (--python)\n"
    "  globals            the type stub of the globals velcg-gen gives a\n"
    "                     template (velcg_template.pyi)\n"
    "  reference          the reference for template writers (docs/templates.md)\n"
    "  --output FILE      write the listing to FILE, only once it is complete\n"
    "  features           the feature switches with their values\n"
    "\n"
    "Exit status: 0 done, 1 failure, 2 bad usage.\n"};

[[gnu::format(printf, 2, 3)]] void appendf(std::string& out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int size = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    if (size > 0) {
        std::vector<char> buffer(static_cast<std::size_t>(size) + 1);
        std::vsnprintf(buffer.data(), buffer.size(), format, again);
        out.append(buffer.data(), static_cast<std::size_t>(size));
    }
    va_end(again);
}

std::string join(const std::vector<std::string>& items, const char* separator) {
    std::string out;
    for (const auto& item : items) {
        if (!out.empty()) out += separator;
        out += item;
    }
    return out;
}

// The host type, with the class of the objects the property holds.
std::string hostTypeColumn(const PropertyInfo& p) {
    if (p.elementClass.empty()) return p.hostType;
    return p.hostType + " (" + p.elementClass + (p.oneObject ? ")" : " list)");
}

std::string signature(const MethodInfo& m) {
    std::string out = m.name + "(" + join(m.argumentTypes, ", ") + ")";
    if (!m.resultType.empty()) out += " -> " + m.resultType;
    return out;
}

// "name(parameter: type, ...) -> result"; a property without parentheses.
std::string operationSignature(const VelCG::reference::Operation& op) {
    std::vector<std::string> parameters;
    for (const auto& p : op.parameters) parameters.push_back(p.name + ": " + p.type);
    return op.name + (op.property ? "" : "(" + join(parameters, ", ") + ")") + " -> " + op.result;
}

std::string listText(const std::vector<ClassListing>& classes) {
    std::string out;
    for (const auto& [c, properties, methods] : classes) {
        std::size_t typeWidth = 24;
        for (const auto& p : properties) typeWidth = std::max(typeWidth, hostTypeColumn(p).size());
        const std::string& super = c->getSuperclassName().empty() ? "-" : c->getSuperclassName();
        appendf(out, "%s  (%s; superclass %s%s)\n", c->getQualifiedName().c_str(),
                c->getDescription().c_str(), super.c_str(), c->isAbstract() ? "; abstract" : "");
        for (const auto& p : properties)
            appendf(out, "    %-32s %-*s %s\n", p.name.c_str(), static_cast<int>(typeWidth),
                    hostTypeColumn(p).c_str(), p.readOnly ? "read-only" : "read-write");
        for (const auto& m : methods) appendf(out, "    %s\n", signature(m).c_str());
    }
    for (const VelCG::reference::ModuleClass& c : VelCG::reference::moduleClasses()) {
        std::string summary = c.summary.substr(0, c.summary.find('\n'));
        if (!summary.empty() && summary.back() == '.') summary.pop_back();
        appendf(out, "%s  (%s; %s)\n", c.name.empty() ? "velcg" : ("velcg." + c.name).c_str(),
                summary.c_str(),
                c.name.empty() ? "the Python module's functions" : "a class of the Python module");
        for (const VelCG::reference::Operation& op : c.operations)
            appendf(out, "    %s\n", operationSignature(op).c_str());
    }
    return out;
}

std::string listMarkdown(const std::vector<ClassListing>& classes) {
    std::string out;
    for (const auto& [c, properties, methods] : classes) {
        const std::string& super = c->getSuperclassName().empty() ? "-" : c->getSuperclassName();
        appendf(out, "## %s\n\n%s. Superclass: %s.%s\n\n", c->getQualifiedName().c_str(),
                c->getDescription().c_str(), super.c_str(), c->isAbstract() ? " Abstract." : "");
        if (!properties.empty()) out += "| property | host type | access |\n|---|---|---|\n";
        for (const auto& p : properties)
            appendf(out, "| %s | %s | %s |\n", p.name.c_str(), hostTypeColumn(p).c_str(),
                    p.readOnly ? "read-only" : "read-write");
        if (!methods.empty()) out += "\n| method | arguments | result |\n|---|---|---|\n";
        for (const auto& m : methods)
            appendf(out, "| %s | %s | %s |\n", m.name.c_str(),
                    m.argumentTypes.empty() ? "-" : join(m.argumentTypes, ", ").c_str(),
                    m.resultType.empty() ? "-" : m.resultType.c_str());
        out += "\n";
    }
    for (const VelCG::reference::ModuleClass& c : VelCG::reference::moduleClasses()) {
        appendf(out, "## %s\n\n%s\n\n| operation | result |\n|---|---|\n",
                c.name.empty() ? "velcg" : ("velcg." + c.name).c_str(),
                c.name.empty() ? "The module's functions and constants." : c.summary.c_str());
        for (const VelCG::reference::Operation& op : c.operations) {
            std::string signature = operationSignature(op);
            signature = signature.substr(0, signature.rfind(" -> "));
            std::string result = op.result;
            for (std::string* text : {&signature, &result})
                for (std::size_t at = 0; (at = text->find('|', at)) != std::string::npos; at += 2)
                    text->insert(at, "\\");
            appendf(out, "| %s | %s |\n", signature.c_str(), result.c_str());
        }
        out += "\n";
    }
    return out;
}

bool writeOutput(const std::string& text, const std::string& path) {
    if (path.empty()) return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (file) return true;
    std::remove(path.c_str());
    VelCG::cli::error(kTool, path, "cannot write the listing");
    return false;
}

int printClasses(const std::vector<std::string>& args) {
    enum { Text, Markdown, Python } format = Text;
    std::string output;
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--markdown" && format == Text)
            format = Markdown;
        else if (args[i] == "--python" && format == Text)
            format = Python;
        else if (args[i] == "--output" && output.empty())
            output = VelCG::cli::optionValue(args, i);
        else
            throw VelCG::cli::UsageError("unexpected argument '" + args[i] + "'");
    }
    const korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    const std::string package = QueryPlexoFcnTable_velcg()->packageName;
    std::string text;
    switch (format) {
        case Text:
            text = listText(listPackage(client, package));
            break;
        case Markdown:
            text = listMarkdown(listPackage(client, package));
            break;
        case Python:
            text = VelCG::inspect::StubWriter(client, package).write();
            break;
    }
    return writeOutput(text, output) ? 0 : 1;
}

// A command that takes only --output FILE.
int printPage(const std::vector<std::string>& args, std::string (*write)()) {
    std::string output;
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--output" && output.empty())
            output = VelCG::cli::optionValue(args, i);
        else
            throw VelCG::cli::UsageError("unexpected argument '" + args[i] + "'");
    }
    return writeOutput(write(), output) ? 0 : 1;
}

void printFeatures() {
    for (const vel::feature::Feature* f : vel::feature::Registry::all())
        std::printf("%-28s value %-4d default %-4d %-24s %s\n", f->name().c_str(), f->peek(),
                    f->defaultValue(), f->group().c_str(), f->description().c_str());
}

} // namespace

int main(int argc, char** argv) {
    return VelCG::cli::run(
        kTool, argc, argv, [](const VelCG::cli::Tool&, const std::vector<std::string>& args) {
            const std::string command = args.empty() ? "" : args[0];
            const bool known = command == "classes" || command == "globals" || command == "reference";
            if (!known && !(args.size() == 1 && command == "features"))
                throw VelCG::cli::UsageError(args.empty() ? "missing a command" : "unexpected arguments");
            PlexoInitialize_velcg();
            struct Terminate {
                ~Terminate() { PlexoTerminate_velcg(); }
            } terminate;
            if (command == "classes") return printClasses(args);
            if (command == "globals") return printPage(args, &VelCG::inspect::writeGlobalsStub);
            if (command == "reference") return printPage(args, &VelCG::inspect::writeReference);
            printFeatures();
            return 0;
        });
}
