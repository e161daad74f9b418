#pragma once

// What template scripts work with, as data: the kinds of generated file and
// their sections, the attributes and operations of the script bridge, the
// documentation of the members of the package's classes and the messages a
// template can meet. The library works from the same tables (the bridge
// fills its dispatch tables from the attribute rows, the content builders
// place the sections the file kinds list), so a reference generated from
// them (`velcg-inspect reference`) says what the library does.
//
// Every function may be called from any thread; the tables never change.

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "velcg/Export.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG::reference {

// How a bridge attribute is read or set.
enum class ValueType { None, Boolean, String, StringList };

// "boolean", "string", "string list"; "" for None.
VELCG_API const char* valueTypeName(ValueType type);

struct FileKind {
    std::string label;                          // "module file"
    std::string className;                      // "VelCGModuleFile"
    std::string descriptionKinds;               // the "kind" of a model description's file entry
    std::vector<VelCGFileSectionKind> sections; // the sections it has, in file order
};
// The file kinds, as the content builders build them.
VELCG_API std::vector<FileKind> fileKinds();

// The name of a section in messages and the reference: its Scriv section
// name, or "ForwardDecls" for the kind that scripts cannot name.
VELCG_API std::string sectionLabel(VelCGFileSectionKind kind);

struct BridgeAttribute {
    std::string name;
    ValueType readAs; // None: not readable
    ValueType setAs;  // None: read-only
    std::string description;
};
// The bridge's file attributes, in the order the reference lists them.
VELCG_API std::vector<BridgeAttribute> bridgeAttributes();

struct Parameter {
    std::string name;
    std::string type; // a Python type
};
// A method, property or function of the Python module velcg that is not a
// member of a package class.
struct Operation {
    std::string name;
    std::vector<Parameter> parameters;
    std::string result; // a Python type; "None" for nothing
    std::string summary;
    bool property = false; // read as an attribute, without a call
};
// A class of the module velcg of its own (the bridge, values of the host),
// or, with an empty name, the module's functions and constants.
struct ModuleClass {
    std::string name;
    std::string summary;
    std::vector<Operation> operations;
};
VELCG_API const std::vector<ModuleClass>& moduleClasses();
// The operation of a module class (name "" for a module function), or null.
VELCG_API const Operation* findOperation(const std::string& className, const std::string& name);

// What a member of a package class does, for docstrings and the reference.
struct MemberDoc {
    std::string summary;
    std::vector<std::string> argumentNames; // a method's, in order
    // The Python type of a property's value or a method's result where the
    // host type does not tell it ("VelCGFile | None", "DataInterface | None");
    // empty where it does.
    std::string type;
};
// Every documented member by qualified class and member name
// ({"VelCG.CGModel", "Systems"}): each member a class of the package
// registers itself.
VELCG_API const std::map<std::pair<std::string, std::string>, MemberDoc>& memberDocs();
// The documentation of one member, or null when it has none.
VELCG_API const MemberDoc* findMemberDoc(const std::string& qualifiedClass, const std::string& member);

// A message a template can meet, with what to do about it.
struct Message {
    std::string identifier;
    std::string text; // the catalogue's template, arguments as {1}, {2}, ...
    std::string advice;
    bool warning;
};
// In catalogue order, the library's own first, then the host's.
VELCG_API std::vector<Message> templateMessages();

} // namespace VelCG::reference
