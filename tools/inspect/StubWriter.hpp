#pragma once

// The type stubs of the Python module velcg: velcg.pyi (every class of the
// package and of the module, with docstrings, argument names and types) and
// velcg_template.pyi (the globals velcg-gen gives a template).

#include <set>
#include <string>
#include <vector>

#include "inspect/ClassListing.hpp"
#include "korb/Client.hpp"

namespace VelCG::inspect {

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
// Throws std::runtime_error for a class or member the stub cannot hold and
// for a member without documentation (reference::findMemberDoc).
class StubWriter {
public:
    StubWriter(const korb::Client& client, std::string package)
        : client_(client), package_(std::move(package)) {}

    std::string write();

private:
    void writeClass(std::string& out, const std::vector<ClassListing>& classes, const ClassListing& c,
                    std::set<const vel::mi::HandleClass*>& written);
    void writeModuleClasses(std::string& out);
    std::string pyClass(const std::string& qualified) const;
    PyType pyType(const std::string& hostType, const std::string& elementClass, bool oneObject,
                  const std::string& cls, const std::string& member) const;
    std::string ref(const std::string& name);
    std::string render(const PyType& type);
    // A type the documentation names ("VelCGFile | None").
    std::string renderNamed(const std::string& type);

    const korb::Client& client_;
    std::string package_;
    std::set<std::string> packageClasses_;
    std::set<std::string> ownNames_; // of the class being written
    std::set<std::string> aliases_;
};

// velcg_template.pyi.
std::string writeGlobalsStub();

} // namespace VelCG::inspect
