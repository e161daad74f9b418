#include "velcg/VelCGFileContent.hpp"

#include <cstring>

#include "vel/diag/Diagnostic.hpp"

namespace VelCG {

namespace {
bool isSlot(VelCGFileSectionKind kind) {
    return static_cast<unsigned>(kind) < static_cast<unsigned>(kNumberOfSectionSlots);
}
} // namespace

// EmptyFileSection

VelCGFileContent::EmptyFileSection::EmptyFileSection() = default;
VelCGFileContent::EmptyFileSection::EmptyFileSection(const EmptyFileSection& other) = default;
VelCGFileContent::EmptyFileSection::~EmptyFileSection() = default;

namespace {
void warnDropped(std::size_t bytes) {
    if (bytes != 0) vel::diag::warn("VelCG:VelCGFileContent:MissingSection", {std::to_string(bytes)});
}
} // namespace

void VelCGFileContent::EmptyFileSection::addContent_cstr(const char* text) {
    if (text) warnDropped(std::strlen(text));
}
void VelCGFileContent::EmptyFileSection::addContent(const std::string& text) { warnDropped(text.size()); }
void VelCGFileContent::EmptyFileSection::addFragment(FragmentPtr fragment) {
    if (fragment) warnDropped(fragment->getContent().size());
}

std::unique_ptr<FileSection> VelCGFileContent::EmptyFileSection::clone() const {
    return std::make_unique<EmptyFileSection>();
}

const std::string& VelCGFileContent::EmptyFileSection::getSectionFragment(std::uint32_t) const {
    return emptyString_;
}

// VelCGFileContent

VelCGFileContent::VelCGFileContent() = default;

VelCGFileContent::VelCGFileContent(const VelCGFileContent& other) {
    for (int k = 0; k < kNumberOfSectionSlots; ++k)
        if (other.sections_[k]) sections_[k] = other.sections_[k]->clone();
}

VelCGFileContent& VelCGFileContent::operator=(const VelCGFileContent& other) {
    if (this != &other) {
        VelCGFileContent copy(other);
        sections_.swap(copy.sections_);
    }
    return *this;
}

VelCGFileContent::~VelCGFileContent() = default;

FileSection& VelCGFileContent::getSection(VelCGFileSectionKind kind) {
    if (!hasSection(kind)) return emptySection_;
    return *sections_[kind];
}

const FileSection& VelCGFileContent::getSection(VelCGFileSectionKind kind) const {
    if (!hasSection(kind)) return emptySection_;
    return *sections_[kind];
}

bool VelCGFileContent::hasSection(VelCGFileSectionKind kind) const {
    return isSlot(kind) && sections_[kind] != nullptr;
}

bool VelCGFileContent::isEmpty() const {
    for (const auto& s : sections_)
        if (s && !s->isEmpty()) return false;
    return true;
}

void VelCGFileContent::clearContents() {
    for (const auto& s : sections_)
        if (s && !s->isEmpty()) s->clearContent();
}

void VelCGFileContent::setSection(VelCGFileSectionKind kind, std::unique_ptr<FileSection> section) {
    if (!isSlot(kind))
        vel::diag::throwError("VelCG:VelCGFileContent:InvalidSlot",
                              {std::to_string(static_cast<int>(kind)), "no such slot"});
    if (!section)
        vel::diag::throwError("VelCG:VelCGFileContent:InvalidSlot",
                              {std::to_string(static_cast<int>(kind)), "the section is null"});
    if (sections_[kind]) sections_[kind]->endScriptAccess();
    sections_[kind] = std::move(section);
}

} // namespace VelCG
