#pragma once

// What template scripts work with, as data: the kinds of generated file and
// their sections, and the attributes of the script bridge. The library works
// from the same tables (the bridge fills its dispatch tables from the
// attribute rows, the content builders place the sections the file kinds
// list), so a reference generated from them says what the library does.
//
// Every function may be called from any thread; the tables never change.

#include <string>
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

} // namespace VelCG::reference
