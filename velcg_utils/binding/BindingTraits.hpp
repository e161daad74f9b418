#pragma once

// Host value conversions of the library's own types, for every class
// binding of the package. They live in this one header, which
// ClassBindings.hpp includes, so that every binding file sees the same
// specializations: one seen in one file and not in another would silently
// pick the generic conversion there.

#include <cstdint>
#include <utility>
#include <vector>

#include "korb/HostTraits.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/VarGroup.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace korb {

// Enumerations reach scripts as their names.
template <>
struct HostTraits<VelCG::BlockVirtuality>
    : EnumNameTraits<VelCG::BlockVirtuality, &VelCG::GraphicalBlock::getStringForBlockVirtuality> {};
template <>
struct HostTraits<VelCG::GraphicalSubsystemType>
    : EnumNameTraits<VelCG::GraphicalSubsystemType, &VelCG::GraphicalSubsystem::getStringForSubsystemType> {};
template <>
struct HostTraits<VelCG::VarGroupEnum>
    : EnumNameTraits<VelCG::VarGroupEnum, &VelCG::VarGroup::getStringforCategory> {};

// A section kind from scripts: its enumerator name as a character vector
// (unknown names answer BANNER_SECTION, see getSectionKindFromEnumName) or
// its numeric value.
template <>
struct HostTraits<VelCG::VelCGFileSectionKind> {
    static constexpr const char* typeName = kCharVector;
    static tuvArrayPtr toArray(VelCG::VelCGFileSectionKind kind) {
        return tuvArray::fromUtf8(VelCG::getSectionKindEnumName(kind));
    }
    static VelCG::VelCGFileSectionKind fromArray(const tuvArray& a) {
        if (a.classId() == tuvClass::Char) return VelCG::getSectionKindFromEnumName(a.toUtf8());
        return static_cast<VelCG::VelCGFileSectionKind>(
            detail::toInteger(a, INT32_MIN, INT32_MAX, "section kind"));
    }
};

// The repository's file list, delivered under its own host type name.
template <>
struct HostTraits<std::vector<VelCG::VelCGFile*>> {
    static constexpr const char* typeName = "VelCG.VelCGFile vector";
    static tuvArrayPtr toArray(const std::vector<VelCG::VelCGFile*>& files) {
        std::vector<vel::mi::HandleRef> refs;
        refs.reserve(files.size());
        for (const VelCG::VelCGFile* f : files) refs.push_back(f->makeRef());
        return tuvArray::objects(std::move(refs));
    }
};

} // namespace korb
