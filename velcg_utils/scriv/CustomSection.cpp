#include "velcg/CustomSection.hpp"

namespace VelCG {

CustomSection::CustomSection(std::string name, VelCGFileSectionKind builtinSection)
    : name_(std::move(name)),
      builtinSection_(builtinSection),
      isRequired_(builtinSection != DOCUMENTATION_SECTION) {}

CustomSection::CustomSection(const CustomSection& other) = default;

CustomSection::~CustomSection() = default;

std::unique_ptr<FileSection> CustomSection::clone() const { return std::make_unique<CustomSection>(*this); }

std::string CustomSection::getSectionToken() const { return name_ + "_InUse"; }

} // namespace VelCG
