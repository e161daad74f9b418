// Lists what the library shows to a host: the classes of the package "VelCG"
// with their properties and methods, and the feature switches. Everything
// about the classes comes from the object system's public client, as a
// script runtime sees it.
//
//   velcg_inspect classes [--markdown | --python] [--output FILE]
//   velcg_inspect features
//
// --python prints the type stub (.pyi) of the Python module velcg; --output
// writes the listing to FILE, and only once it is complete.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/PlexoModule.hpp"

namespace {

using korb::MethodInfo;
using korb::PropertyInfo;
using vel::mi::HandleClass;

int usage() {
    std::fprintf(stderr,
                 "usage: velcg_inspect classes [--markdown | --python] [--output FILE]\n"
                 "       velcg_inspect features\n");
    return 2;
}

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

// A class with the members it declares itself; inherited ones are listed
// with the class that declares them.
struct ClassListing {
    const HandleClass* cls;
    std::vector<PropertyInfo> properties;
    std::vector<MethodInfo> methods;
};

std::vector<ClassListing> listPackage(const korb::Client& client, const std::string& package) {
    std::vector<ClassListing> out;
    for (const HandleClass* c : client.getClasses(package)) {
        ClassListing listing{c, {}, {}};
        for (auto& p : client.describeProperties(*c))
            if (p.definedBy == c->getQualifiedName()) listing.properties.push_back(std::move(p));
        for (auto& m : client.describeMethods(*c))
            if (m.definedBy == c->getQualifiedName()) listing.methods.push_back(std::move(m));
        out.push_back(std::move(listing));
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
    return out;
}

// The module's own types and functions, which do not come from the package.
constexpr const char* kStubPreamble =
    R"("""Type stub of the module velcg, generated by `velcg_inspect classes --python`."""

from __future__ import annotations

from typing import Any, BinaryIO

class Error(Exception):
    identifier: str
    arguments: list[str]
    message: str
    def __init__(self, identifier: str, message: str, arguments: list[str] = ...) -> None: ...

class UnknownMemberError(Error, AttributeError): ...

class Object:
    def __init__(self, handle: object) -> None: ...
    def __eq__(self, other: object) -> bool: ...
    def __ne__(self, other: object) -> bool: ...
    def __hash__(self) -> int: ...
    def __repr__(self) -> str: ...
    def __dir__(self) -> list[str]: ...

class Method:
    def __call__(self, *args: Any) -> Any: ...
)";

constexpr const char* kStubModuleExtras = R"(
class DataInterface:
    @property
    def identifier(self) -> str: ...
    @property
    def implementation(self) -> str: ...
    @property
    def owner(self) -> str: ...
    @property
    def typeName(self) -> str: ...
    @property
    def graphicalName(self) -> str: ...

class EmbeddedType:
    @property
    def name(self) -> str: ...

class HostValue:
    @property
    def className(self) -> str: ...

class CustomContents:
    def isCustomSection(self, name: str) -> bool: ...
    def addContentToSection(self, name: str, content: str | bytes) -> None: ...
    def getCustomSectionContent(self, name: str, context: str) -> str: ...
    def setCustomTokenInUse(self, name: str) -> None: ...

class Bridge:
    def isBooleanAttribute(self, name: str) -> bool: ...
    def isStringAttribute(self, name: str) -> bool: ...
    def isStringArrayAttribute(self, name: str) -> bool: ...
    def isFileSectionAttribute(self, name: str) -> bool: ...
    def getBooleanAttribute(self, fileIndex: int, name: str) -> bool: ...
    def getStringAttribute(self, fileIndex: int, name: str) -> str: ...
    def getStringArrayAttribute(self, fileIndex: int, name: str) -> list[str]: ...
    def setAttribute(self, fileIndex: int, name: str, value: bool | str) -> None: ...
    def addSectionContent(self, fileIndex: int, sectionName: str, content: str | bytes) -> None: ...
    def addCustomSection(self, fileIndex: int, builtinSectionName: str, customSectionName: str) -> None: ...
    def appendMissingTokens(self, fileIndex: int, sectionName: str) -> None: ...
    def writeSection(self, fileIndex: int, sectionName: str, file: BinaryIO) -> None: ...
    def writeFile(self, fileIndex: int, directory: str) -> None: ...
    def customContents(self, fileIndex: int) -> CustomContents: ...
    @property
    def numberOfFiles(self) -> int: ...

sectionNames: tuple[str, ...]

def bridge(repository: VelCGFileRepository) -> Bridge: ...
def classOf(obj: Object) -> str: ...
)";

// Names the stub defines or imports at module level besides the package's
// classes; a class of the package cannot take one of them.
const std::set<std::string> kModuleNames = {"Any",
                                            "BinaryIO",
                                            "Bridge",
                                            "CustomContents",
                                            "DataInterface",
                                            "EmbeddedType",
                                            "Error",
                                            "Object",
                                            "annotations",
                                            "bridge",
                                            "classOf",
                                            "HostValue",
                                            "Method",
                                            "MethodDescriptor",
                                            "PropertyDescriptor",
                                            "UnknownMemberError",
                                            "sectionNames"};

bool isPythonName(const std::string& name) {
    static const std::set<std::string> keywords = {
        "False", "None",     "True",  "and",    "as",   "assert", "async",  "await",    "break",
        "class", "continue", "def",   "del",    "elif", "else",   "except", "finally",  "for",
        "from",  "global",   "if",    "import", "in",   "is",     "lambda", "nonlocal", "not",
        "or",    "pass",     "raise", "return", "try",  "while",  "with",   "yield"};
    if (name.empty() || keywords.count(name)) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char ch = name[i];
        const bool letter = (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || ch == '_';
        if (!letter && !(i > 0 && ch >= '0' && ch <= '9')) return false;
    }
    return true;
}

// A Python type: a name, a list of it, or it or None.
struct PyType {
    enum Shape { Plain, List, Optional } shape;
    std::string name;
    bool operator==(const PyType& o) const { return shape == o.shape && name == o.name; }
    bool operator!=(const PyType& o) const { return !(*this == o); }
};

// Writes the classes of one package as Python classes. Inside a class body
// the class's own members hide module-level names, so a type whose name a
// member of the class takes is written through a module-level alias.
class StubWriter {
public:
    StubWriter(const korb::Client& client, std::string package)
        : client_(client), package_(std::move(package)) {}

    std::string write() {
        const auto classes = listPackage(client_, package_);
        if (classes.empty())
            throw std::runtime_error("the package " + package_ + " has no classes; is it registered?");
        for (const auto& c : classes) {
            const std::string& name = c.cls->getShortName();
            if (!isPythonName(name) || kModuleNames.count(name))
                throw std::runtime_error("the class " + c.cls->getQualifiedName() +
                                         " cannot be a Python class of that name");
            packageClasses_.insert(c.cls->getQualifiedName());
        }
        std::string out = kStubPreamble;
        std::set<const HandleClass*> written;
        for (const auto& c : classes) writeClass(out, classes, c, written);
        out += kStubModuleExtras;
        if (!aliases_.empty()) {
            out += "\n# Names that members of a class hide inside its body.\n";
            for (const auto& name : aliases_) appendf(out, "_%s = %s\n", name.c_str(), name.c_str());
        }
        return out;
    }

private:
    // Writes the Python class of its superclass first.
    void writeClass(std::string& out, const std::vector<ClassListing>& classes, const ClassListing& c,
                    std::set<const HandleClass*>& written) {
        if (!written.insert(c.cls).second) return;
        std::string base = "Object";
        if (const HandleClass* super = client_.getSuperclass(*c.cls);
            super && packageClasses_.count(super->getQualifiedName())) {
            for (const auto& other : classes)
                if (other.cls == super) writeClass(out, classes, other, written);
            base = super->getShortName();
        }
        ownNames_.clear();
        for (const auto& p : c.properties) ownNames_.insert(p.name);
        for (const auto& m : c.methods) ownNames_.insert(m.name);

        appendf(out, "\nclass %s(%s):", c.cls->getShortName().c_str(), base.c_str());
        if (c.properties.empty() && c.methods.empty()) {
            out += " ...\n";
            return;
        }
        out += "\n";
        const std::string& cls = c.cls->getQualifiedName();
        for (const auto& p : c.properties) {
            if (!isPythonName(p.name)) {
                appendf(out, "    # %s: not a Python name, reached through getattr() only\n", p.name.c_str());
                continue;
            }
            const PyType type = pyType(p.hostType, p.elementClass, p.oneObject, cls, p.name);
            if (p.readOnly) {
                appendf(out, "    @property\n    def %s(self) -> %s: ...\n", p.name.c_str(),
                        render(type).c_str());
                continue;
            }
            const PyType setterType = pyType(p.setterType, p.elementClass, p.oneObject, cls, p.name);
            if (setterType == type) {
                appendf(out, "    %s: %s\n", p.name.c_str(), render(type).c_str());
            } else {
                appendf(out, "    @property\n    def %s(self) -> %s: ...\n", p.name.c_str(),
                        render(type).c_str());
                appendf(out, "    @%s.setter\n    def %s(self, value: %s) -> None: ...\n", p.name.c_str(),
                        p.name.c_str(), render(setterType).c_str());
            }
        }
        for (const auto& m : c.methods) {
            if (!isPythonName(m.name)) {
                appendf(out, "    # %s: not a Python name, reached through getattr() only\n", m.name.c_str());
                continue;
            }
            std::string parameters = "self";
            for (std::size_t i = 0; i < m.argumentTypes.size(); ++i)
                appendf(parameters, ", a%zu: %s", i + 1,
                        render(pyType(m.argumentTypes[i], {}, false, cls, m.name)).c_str());
            // Methods take their arguments by position only.
            if (!m.argumentTypes.empty()) parameters += ", /";
            std::string result = "None";
            if (m.returnsOneObject)
                result = render({PyType::Optional, "Object"});
            else if (!m.resultType.empty())
                result = render(pyType(m.resultType, {}, false, cls, m.name));
            appendf(out, "    def %s(%s) -> %s: ...\n", m.name.c_str(), parameters.c_str(), result.c_str());
        }
    }

    // The Python class for objects of a qualified class.
    std::string pyClass(const std::string& qualified) const {
        if (!packageClasses_.count(qualified)) return "Object";
        return qualified.substr(qualified.rfind('.') + 1);
    }

    PyType pyType(const std::string& hostType, const std::string& elementClass, bool oneObject,
                  const std::string& cls, const std::string& member) const {
        if (hostType == "logical scalar") return {PyType::Plain, "bool"};
        if (hostType == "int32 scalar" || hostType == "uint32 scalar" || hostType == "int64 scalar")
            return {PyType::Plain, "int"};
        if (hostType == "double scalar") return {PyType::Plain, "float"};
        if (hostType == "char" || hostType == "char vector") return {PyType::Plain, "str"};
        if (hostType == "int32 vector") return {PyType::List, "int"};
        if (hostType == "cell") return {PyType::List, elementClass.empty() ? "str" : pyClass(elementClass)};
        if (hostType == "any") {
            if (elementClass.empty()) return {PyType::Plain, "Any"};
            return {oneObject ? PyType::Optional : PyType::List, pyClass(elementClass)};
        }
        // A list type of the package's own: "Package.Class vector".
        const std::string suffix = " vector";
        if (hostType.size() > suffix.size() &&
            hostType.compare(hostType.size() - suffix.size(), suffix.size(), suffix) == 0) {
            const std::string element = hostType.substr(0, hostType.size() - suffix.size());
            if (packageClasses_.count(element))
                return {PyType::List, pyClass(elementClass.empty() ? element : elementClass)};
        }
        throw std::runtime_error("no Python type for the host type '" + hostType + "' of " + cls + "." +
                                 member);
    }

    std::string ref(const std::string& name) {
        if (!ownNames_.count(name)) return name;
        aliases_.insert(name);
        return "_" + name;
    }

    std::string render(const PyType& type) {
        switch (type.shape) {
            case PyType::List:
                return ref("list") + "[" + ref(type.name) + "]";
            case PyType::Optional:
                return ref(type.name) + " | None";
            case PyType::Plain:
                break;
        }
        return ref(type.name);
    }

    const korb::Client& client_;
    std::string package_;
    std::set<std::string> packageClasses_;
    std::set<std::string> ownNames_; // of the class being written
    std::set<std::string> aliases_;
};

bool writeOutput(const std::string& text, const char* path) {
    if (!path) return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (file) return true;
    std::remove(path);
    std::fprintf(stderr, "velcg_inspect: cannot write %s\n", path);
    return false;
}

int printClasses(int argc, char** argv) {
    enum { Text, Markdown, Python } format = Text;
    const char* output = nullptr;
    for (int i = 2; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--markdown") && format == Text)
            format = Markdown;
        else if (!std::strcmp(argv[i], "--python") && format == Text)
            format = Python;
        else if (!std::strcmp(argv[i], "--output") && !output && i + 1 < argc)
            output = argv[++i];
        else
            return usage();
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
            text = StubWriter(client, package).write();
            break;
    }
    return writeOutput(text, output) ? 0 : 1;
}

void printFeatures() {
    for (const vel::feature::Feature* f : vel::feature::Registry::all())
        std::printf("%-28s value %-4d default %-4d %-24s %s\n", f->name().c_str(), f->peek(),
                    f->defaultValue(), f->group().c_str(), f->description().c_str());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage();
    PlexoInitialize_velcg();
    int status = 0;
    try {
        if (!std::strcmp(argv[1], "classes"))
            status = printClasses(argc, argv);
        else if (!std::strcmp(argv[1], "features") && argc == 2)
            printFeatures();
        else
            status = usage();
    } catch (const vel::diag::Exception& e) {
        std::fprintf(stderr, "velcg_inspect: %s\n", e.what());
        status = 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "velcg_inspect: %s\n", e.what());
        status = 1;
    }
    PlexoTerminate_velcg();
    return status;
}
