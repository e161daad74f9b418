#include "velcg/VelCGFileContent.hpp"

#include <cstring>

#include "FileKindSections.hpp"
#include "Messages.hpp"
#include "NearNames.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/TemplateReference.hpp"

namespace VelCG {

namespace {
bool isSlot(VelCGFileSectionKind kind) {
    return static_cast<unsigned>(kind) < static_cast<unsigned>(kNumberOfSectionSlots);
}
} // namespace

// EmptyFileSection

VelCGFileContent::EmptyFileSection::EmptyFileSection() : EmptyFileSection(nullptr, -1) {}

VelCGFileContent::EmptyFileSection::EmptyFileSection(const VelCGFileContent* owner, int kind)
    : owner_(owner), kind_(kind) {
    if (!owner_) copiedContext_ = context();
}

// Copies say what the original says, without depending on its table.
VelCGFileContent::EmptyFileSection::EmptyFileSection(const EmptyFileSection& other)
    : FileSection(other), kind_(other.kind_), copiedContext_(other.context()) {}

VelCGFileContent::EmptyFileSection::~EmptyFileSection() = default;

std::vector<std::string> VelCGFileContent::EmptyFileSection::context() const {
    if (!owner_ && !copiedContext_.empty()) return copiedContext_;
    std::string section = reference::sectionLabel(static_cast<VelCGFileSectionKind>(kind_));
    if (section.empty()) section = "out-of-range";
    std::string file = owner_ && !owner_->getFileName().empty() ? owner_->getFileName() : "(unnamed)";
    // The file's kind is the one whose sections the table has.
    std::string fileKind = "file of its kind";
    std::vector<std::string> present;
    for (int k = 0; owner_ && k < kNumberOfSectionKinds; ++k)
        if (owner_->hasSection(static_cast<VelCGFileSectionKind>(k)))
            present.push_back(reference::sectionLabel(static_cast<VelCGFileSectionKind>(k)));
    for (int f = 0; owner_ && f < files_detail::kNumberOfFileKinds; ++f) {
        bool same = true;
        for (int k = 0; k < kNumberOfSectionKinds; ++k)
            same = same && files_detail::kSectionRows[k].slots[f].present ==
                               owner_->hasSection(static_cast<VelCGFileSectionKind>(k));
        if (same) fileKind = files_detail::kFileKindNames[f].label;
    }
    return {std::move(section), std::move(file), std::move(fileKind),
            present.empty() ? "none" : names_detail::quotedList(present, 0, "and")};
}

void VelCGFileContent::EmptyFileSection::warnDropped(std::size_t bytes) const {
    if (bytes == 0) return;
    std::vector<std::string> arguments = context();
    arguments.insert(arguments.begin(), std::to_string(bytes));
    vel::diag::warn(messages::VelCGFileContent::MissingSection, std::move(arguments));
}

void VelCGFileContent::EmptyFileSection::addContent_cstr(const char* text) {
    if (text) warnDropped(std::strlen(text));
}
void VelCGFileContent::EmptyFileSection::addContent(const std::string& text) { warnDropped(text.size()); }
void VelCGFileContent::EmptyFileSection::addFragment(FragmentPtr fragment) {
    if (fragment) warnDropped(fragment->getContent().size());
}

std::unique_ptr<FileSection> VelCGFileContent::EmptyFileSection::clone() const {
    return std::make_unique<EmptyFileSection>(*this);
}

const std::string& VelCGFileContent::EmptyFileSection::getSectionFragment(std::uint32_t) const {
    return emptyString_;
}

// VelCGFileContent

VelCGFileContent::VelCGFileContent() : emptySection_(this, -1) {}

VelCGFileContent::VelCGFileContent(const VelCGFileContent& other)
    : emptySection_(this, -1), fileName_(other.fileName_) {
    for (int k = 0; k < kNumberOfSectionSlots; ++k)
        if (other.sections_[k]) sections_[k] = other.sections_[k]->clone();
}

VelCGFileContent& VelCGFileContent::operator=(const VelCGFileContent& other) {
    if (this != &other) {
        VelCGFileContent copy(other);
        sections_.swap(copy.sections_);
        fileName_ = other.fileName_;
    }
    return *this;
}

VelCGFileContent::~VelCGFileContent() = default;

FileSection& VelCGFileContent::getSection(VelCGFileSectionKind kind) {
    if (hasSection(kind)) return *sections_[kind];
    if (!isSlot(kind)) return emptySection_;
    std::unique_ptr<EmptyFileSection>& standIn = standIns_[kind];
    if (!standIn) standIn.reset(new EmptyFileSection(this, kind));
    return *standIn;
}

const FileSection& VelCGFileContent::getSection(VelCGFileSectionKind kind) const {
    if (hasSection(kind)) return *sections_[kind];
    if (isSlot(kind) && standIns_[kind]) return *standIns_[kind];
    return emptySection_;
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
        vel::diag::throwError(messages::VelCGFileContent::InvalidSlot,
                              {std::to_string(static_cast<int>(kind)), "no such slot"});
    if (!section)
        vel::diag::throwError(messages::VelCGFileContent::InvalidSlot,
                              {std::to_string(static_cast<int>(kind)), "the section is null"});
    if (sections_[kind]) sections_[kind]->endScriptAccess();
    sections_[kind] = std::move(section);
}

} // namespace VelCG
