#pragma once

#include <string>

#include "velcg/Export.hpp"

namespace VelCG {

// The kinds of section of a generated file. The value is also the section's
// place in the file and its slot in the section table (VelCGFileContent).
// The underlying type is fixed so that any 32-bit value a caller passes is a
// valid object of the type; values outside 0..21 name no section.
enum VelCGFileSectionKind : int {
    BANNER_SECTION = 0,
    INCLUDES_SECTION = 1,
    MODELTYPES_INCLUDES_SECTION = 2,
    MODELTYPES_DEFINES_SECTION = 3,
    DEFINES_SECTION = 4,
    MODELTYPES_TYPEDEFS_SECTION = 5,
    INTRINSIC_TYPES_SECTION = 6,
    PRIMITIVE_TYPEDEFS_SECTION = 7,
    USERTOP_SECTION = 8,
    TYPEDEFS_SECTION = 9,
    FORWARD_DECLS_SECTION = 10,
    ENUMERATIONS_SECTION = 11,
    DEFINITIONS_SECTION = 12,
    EXTERN_DATA_SECTION = 13,
    EXTERN_FCNS_SECTION = 14,
    FCN_PROTOTYPES_SECTION = 15,
    DECLARATIONS_SECTION = 16,
    FUNCTIONS_SECTION = 17,
    COMPILER_ERRORS_SECTION = 18,
    COMPILER_WARNINGS_SECTION = 19,
    DOCUMENTATION_SECTION = 20,
    USERBOTTOM_SECTION = 21,
};

// Number of section kinds (0..21).
inline constexpr int kNumberOfSectionKinds = 22;
// Number of slots of a file's section table (0..22); slot 22 is never filled.
inline constexpr int kNumberOfSectionSlots = 23;

// The name under which Scriv scripts address the section ("Banner",
// "Includes", ...). Empty for FORWARD_DECLS_SECTION, which scripts cannot
// name, and for every value outside 0..21.
VELCG_API std::string getScrivSectionNameFromEnum(VelCGFileSectionKind kind);

// The enumerator's own name ("BANNER_SECTION", ...), or "" outside 0..21.
VELCG_API const char* getSectionKindEnumName(VelCGFileSectionKind kind);

// The kind whose enumerator name is `name`, as host scripts pass a kind.
// A name that is not an enumerator name answers 0 (BANNER_SECTION) and is
// remembered with that value in the process-wide table. Thread-safe.
VELCG_API VelCGFileSectionKind getSectionKindFromEnumName(const std::string& name);

} // namespace VelCG
