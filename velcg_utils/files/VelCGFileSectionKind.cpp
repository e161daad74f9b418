#include "velcg/VelCGFileSectionKind.hpp"

#include <mutex>

#include <boost/unordered_map.hpp>

namespace VelCG {

namespace {

struct KindNames {
    const char* enumName;
    const char* scrivName;
};

const KindNames kKindNames[kNumberOfSectionKinds] = {
    {"BANNER_SECTION", "Banner"},
    {"INCLUDES_SECTION", "Includes"},
    {"MODELTYPES_INCLUDES_SECTION", "ModelTypesIncludes"},
    {"MODELTYPES_DEFINES_SECTION", "ModelTypesDefines"},
    {"DEFINES_SECTION", "Defines"},
    {"MODELTYPES_TYPEDEFS_SECTION", "ModelTypesTypedefs"},
    {"INTRINSIC_TYPES_SECTION", "IntrinsicTypes"},
    {"PRIMITIVE_TYPEDEFS_SECTION", "PrimitiveTypedefs"},
    {"USERTOP_SECTION", "UserTop"},
    {"TYPEDEFS_SECTION", "Typedefs"},
    {"FORWARD_DECLS_SECTION", ""}, // scripts cannot name this section
    {"ENUMERATIONS_SECTION", "Enums"},
    {"DEFINITIONS_SECTION", "Definitions"},
    {"EXTERN_DATA_SECTION", "ExternData"},
    {"EXTERN_FCNS_SECTION", "ExternFcns"},
    {"FCN_PROTOTYPES_SECTION", "FcnPrototypes"},
    {"DECLARATIONS_SECTION", "Declarations"},
    {"FUNCTIONS_SECTION", "Functions"},
    {"COMPILER_ERRORS_SECTION", "CompilerErrors"},
    {"COMPILER_WARNINGS_SECTION", "CompilerWarnings"},
    {"DOCUMENTATION_SECTION", "Documentation"},
    {"USERBOTTOM_SECTION", "UserBottom"},
};

bool isKind(VelCGFileSectionKind kind) { return kind >= 0 && kind < kNumberOfSectionKinds; }

// Enumerator names to kinds. Lookups insert unknown names with kind 0, as
// the host has always answered misspelt kinds, so the table grows and needs
// a lock.
class EnumNameTable {
public:
    EnumNameTable() {
        for (int k = 0; k < kNumberOfSectionKinds; ++k)
            kinds_.emplace(kKindNames[k].enumName, static_cast<VelCGFileSectionKind>(k));
    }

    VelCGFileSectionKind lookup(const std::string& name) {
        std::lock_guard<std::mutex> lock(mutex_);
        return kinds_[name]; // value-initialised to BANNER_SECTION when missing
    }

private:
    std::mutex mutex_;
    boost::unordered_map<std::string, VelCGFileSectionKind> kinds_;
};

} // namespace

std::string getScrivSectionNameFromEnum(VelCGFileSectionKind kind) {
    return isKind(kind) ? kKindNames[kind].scrivName : "";
}

const char* getSectionKindEnumName(VelCGFileSectionKind kind) {
    return isKind(kind) ? kKindNames[kind].enumName : "";
}

VelCGFileSectionKind getSectionKindFromEnumName(const std::string& name) {
    static EnumNameTable table;
    return table.lookup(name);
}

} // namespace VelCG
