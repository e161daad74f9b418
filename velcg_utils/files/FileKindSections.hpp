#pragma once

// Which sections each kind of generated file has: one table, read by the
// content builders (which section to place in a slot, of which class) and by
// the class package (which named section accessors a file class registers,
// in which order). The compile-time checks at the end hold the file classes'
// public named accessors to the same table. Internal to the library: not
// installed, not exported.

#include <type_traits>
#include <utility>

#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileSectionKind.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

namespace VelCG::files_detail {

// The file kinds, the columns of the table.
enum class FileKind : int { Module, Generic, DataTypes };
inline constexpr int kNumberOfFileKinds = 3;

// The class of the section object placed in a slot.
enum class SectionType { Plain, Includes, Functions };

// What one file kind has in one slot.
struct Slot {
    bool present;
    SectionType type;
    // The position (from 1) of the section's named accessor among the file
    // kind's script methods; 0 when the file kind does not answer the section
    // by name.
    int accessorPosition;
};

inline constexpr Slot none{false, SectionType::Plain, 0};
constexpr Slot plain(int accessorPosition = 0) { return {true, SectionType::Plain, accessorPosition}; }
constexpr Slot includes(int accessorPosition) { return {true, SectionType::Includes, accessorPosition}; }
constexpr Slot functions(int accessorPosition) { return {true, SectionType::Functions, accessorPosition}; }

struct SectionRow {
    VelCGFileSectionKind kind;
    // The script method that answers the section ("getIncludesSection"), or
    // null when no file kind answers it by name.
    const char* accessor;
    Slot slots[kNumberOfFileKinds]; // by FileKind

    constexpr const Slot& slot(FileKind file) const { return slots[static_cast<int>(file)]; }
};

// One row per section kind, in kind order. A module file gets banner and
// user text only through its custom contents; a generic file has every
// section, its Functions section a plain one.
// clang-format off
inline constexpr SectionRow kSectionRows[kNumberOfSectionKinds] = {
    // kind                         accessor                          module        generic       data types
    {BANNER_SECTION,              nullptr,                          {none,         plain(),      none}},
    {INCLUDES_SECTION,            "getIncludesSection",             {includes(1),  includes(1),  includes(1)}},
    {MODELTYPES_INCLUDES_SECTION, nullptr,                          {none,         plain(),      none}},
    {MODELTYPES_DEFINES_SECTION,  nullptr,                          {none,         plain(),      none}},
    {DEFINES_SECTION,             "getDefinesSection",              {plain(7),     plain(2),     plain(3)}},
    {MODELTYPES_TYPEDEFS_SECTION, nullptr,                          {none,         plain(),      none}},
    {INTRINSIC_TYPES_SECTION,     nullptr,                          {none,         plain(),      none}},
    {PRIMITIVE_TYPEDEFS_SECTION,  nullptr,                          {none,         plain(),      none}},
    {USERTOP_SECTION,             nullptr,                          {none,         plain(),      none}},
    {TYPEDEFS_SECTION,            "getTypedefsSection",             {plain(2),     plain(4),     plain(2)}},
    {FORWARD_DECLS_SECTION,       "getForwardDeclarationsSection",  {plain(9),     plain(3),     none}},
    {ENUMERATIONS_SECTION,        "getEnumsSection",                {none,         plain(5),     none}},
    {DEFINITIONS_SECTION,         "getDefinitionsSection",          {none,         plain(6),     none}},
    {EXTERN_DATA_SECTION,         "getExternDataSection",           {plain(4),     plain(7),     none}},
    {EXTERN_FCNS_SECTION,         "getExternFunctionsSection",      {plain(3),     plain(8),     none}},
    {FCN_PROTOTYPES_SECTION,      "getFunctionPrototypesSection",   {plain(5),     plain(9),     none}},
    {DECLARATIONS_SECTION,        "getDeclarationsSection",         {plain(6),     plain(10),    none}},
    {FUNCTIONS_SECTION,           "getFunctionsSection",            {functions(8), plain(11),    none}},
    {COMPILER_ERRORS_SECTION,     "getCompilerErrorsSection",       {none,         plain(12),    none}},
    {COMPILER_WARNINGS_SECTION,   "getCompilerWarningsSection",     {none,         plain(13),    none}},
    {DOCUMENTATION_SECTION,       "getDocumentationSection",        {plain(10),    plain(14),    none}},
    {USERBOTTOM_SECTION,          nullptr,                          {none,         plain(),      none}},
};
// clang-format on

// How messages and the template reference name a file kind, and the file
// class and kinds of a model description's "files" entry that give it.
struct FileKindNames {
    const char* label;
    const char* className;
    const char* descriptionKinds;
};
inline constexpr FileKindNames kFileKindNames[kNumberOfFileKinds] = {
    {"module file", "VelCGModuleFile", "ModuleHeader, ModuleSource"},
    {"generic file", "VelCGGenericFile", "Generic"},
    {"data-types file", "VelCGDataTypesFile", "DataTypes"},
};

// The slot of kind for the file kind; none for a kind outside 0..21.
constexpr const Slot& slotOf(FileKind file, VelCGFileSectionKind kind) {
    return kind >= 0 && kind < kNumberOfSectionKinds ? kSectionRows[kind].slot(file) : none;
}

// The number of named accessors of the file kind.
constexpr int numberOfAccessors(FileKind file) {
    int count = 0;
    for (const SectionRow& row : kSectionRows) count += row.slot(file).accessorPosition > 0;
    return count;
}

// The index of the row whose accessor stands at position (from 1) among the
// file kind's, or -1.
constexpr int rowOfAccessor(FileKind file, int position) {
    for (int k = 0; k < kNumberOfSectionKinds; ++k)
        if (kSectionRows[k].slot(file).accessorPosition == position) return k;
    return -1;
}

namespace table_detail {

constexpr bool sameText(const char* a, const char* b) {
    for (; *a && *a == *b; ++a, ++b) {
    }
    return *a == *b;
}

// Rows stand in kind order; a file kind's accessor positions run from 1 with
// no gap or repeat, each on a row that names an accessor.
constexpr bool isWellFormed() {
    for (int k = 0; k < kNumberOfSectionKinds; ++k)
        if (kSectionRows[k].kind != k) return false;
    for (int f = 0; f < kNumberOfFileKinds; ++f) {
        const auto file = static_cast<FileKind>(f);
        for (const SectionRow& row : kSectionRows) {
            const Slot& slot = row.slot(file);
            if (slot.accessorPosition < 0 || (slot.accessorPosition > 0 && (!slot.present || !row.accessor)))
                return false;
        }
        for (int position = 1; position <= numberOfAccessors(file); ++position) {
            int found = 0;
            for (const SectionRow& row : kSectionRows) found += row.slot(file).accessorPosition == position;
            if (found != 1) return false;
        }
    }
    return true;
}

// Whether the file kind answers the section of kind by the named method.
constexpr bool hasAccessor(FileKind file, VelCGFileSectionKind kind, const char* name) {
    const SectionRow& row = kSectionRows[kind];
    return row.slot(file).accessorPosition > 0 && sameText(row.accessor, name);
}

// Whether File makes public both of VelCGFile's protected get<Name>Section
// and korb_get<Name>Section.
#define VELCG_DETECT_PUBLIC_ACCESSOR(Name, Kind)                                                    \
    template <class File, class = void>                                                             \
    struct Publishes##Name : std::false_type {};                                                    \
    template <class File>                                                                           \
    struct Publishes##Name<File, std::void_t<decltype(&File::korb_get##Name##Section),              \
                                             decltype(std::declval<File&>().get##Name##Section())>> \
        : std::true_type {};
// Every named section accessor of VelCGFile, with the kind it answers.
#define VELCG_NAMED_SECTION_ACCESSORS(X)           \
    X(Includes, INCLUDES_SECTION)                  \
    X(Defines, DEFINES_SECTION)                    \
    X(Typedefs, TYPEDEFS_SECTION)                  \
    X(ForwardDeclarations, FORWARD_DECLS_SECTION)  \
    X(Enums, ENUMERATIONS_SECTION)                 \
    X(Definitions, DEFINITIONS_SECTION)            \
    X(ExternData, EXTERN_DATA_SECTION)             \
    X(ExternFunctions, EXTERN_FCNS_SECTION)        \
    X(FunctionPrototypes, FCN_PROTOTYPES_SECTION)  \
    X(Declarations, DECLARATIONS_SECTION)          \
    X(Functions, FUNCTIONS_SECTION)                \
    X(CompilerErrors, COMPILER_ERRORS_SECTION)     \
    X(CompilerWarnings, COMPILER_WARNINGS_SECTION) \
    X(Documentation, DOCUMENTATION_SECTION)
VELCG_NAMED_SECTION_ACCESSORS(VELCG_DETECT_PUBLIC_ACCESSOR)

// Whether File publishes the named accessors of exactly the sections that
// the file kind answers by name in the table.
template <class File>
constexpr bool publishesAccessorsOf(FileKind file) {
    bool same = true;
    int published = 0;
#define VELCG_COMPARE_ACCESSOR(Name, Kind)                                                         \
    same = same && Publishes##Name<File>::value == hasAccessor(file, Kind, "get" #Name "Section"); \
    published += Publishes##Name<File>::value;
    VELCG_NAMED_SECTION_ACCESSORS(VELCG_COMPARE_ACCESSOR)
#undef VELCG_COMPARE_ACCESSOR
    return same && published == numberOfAccessors(file);
}
#undef VELCG_NAMED_SECTION_ACCESSORS
#undef VELCG_DETECT_PUBLIC_ACCESSOR

} // namespace table_detail

static_assert(table_detail::isWellFormed(), "the section table is out of kind or accessor order");
static_assert(table_detail::publishesAccessorsOf<VelCGModuleFile>(FileKind::Module),
              "VelCGModuleFile's public section accessors differ from the section table");
static_assert(table_detail::publishesAccessorsOf<VelCGGenericFile>(FileKind::Generic),
              "VelCGGenericFile's public section accessors differ from the section table");
static_assert(table_detail::publishesAccessorsOf<VelCGDataTypesFile>(FileKind::DataTypes),
              "VelCGDataTypesFile's public section accessors differ from the section table");
static_assert(!table_detail::publishesAccessorsOf<VelCGFile>(FileKind::DataTypes),
              "VelCGFile keeps its named section accessors protected");

} // namespace VelCG::files_detail
