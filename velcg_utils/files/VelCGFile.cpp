#include "velcg/VelCGFile.hpp"

#include <filesystem>

#include "FilesDetail.hpp"
#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGFileContent.hpp"
#include "velcg/VelCGFileContentBuilder.hpp"
#include "velcg/VelCGFileContentCreator.hpp"

namespace VelCG {

namespace {
std::unique_ptr<VelCGFileContent> buildContent(const std::string& name,
                                               std::unique_ptr<VelCGFileContentBuilder> builder) {
    if (!builder) vel::diag::throwError(messages::VelCGFile::NullBuilder, {name});
    std::unique_ptr<VelCGFileContent> content = VelCGFileContentCreator::createFileContent(*builder);
    // A builder that allocated no table leaves the file without sections.
    return content ? std::move(content) : std::make_unique<VelCGFileContent>();
}

// The stem of the name's final component as Boost.Filesystem takes it: up
// to the last dot, so ".profile" has an empty stem; "." and "..", and a name
// ending in a separator (whose final component is "."), are their own stem.
std::string stemOf(const std::string& name) {
    const std::filesystem::path path(name);
    if (!path.empty() && !path.has_filename()) return ".";
    const std::string file = path.filename().string();
    if (file == "." || file == "..") return file;
    const std::string::size_type dot = file.rfind('.');
    return dot == std::string::npos ? file : file.substr(0, dot);
}

std::string withoutLastExtension(const std::string& name) {
    std::string::size_type dot = name.rfind('.');
    return dot == std::string::npos ? name : name.substr(0, dot);
}
} // namespace

VelCGFile::VelCGFile(const std::string& name, std::unique_ptr<VelCGFileContentBuilder> builder)
    : content_(buildContent(name, std::move(builder))),
      name_(vel::i18n::toWide(name)),
      nameAscii_(name),
      baseName_(stemOf(name)),
      nameWithoutExtension_(withoutLastExtension(name)),
      customContents_(name) {
    content_->setFileName(name);
    // The stand-ins of the sections the file lacks are made on first use.
    for (int k = 0; k < kNumberOfSectionSlots; ++k) {
        const auto kind = static_cast<VelCGFileSectionKind>(k);
        if (content_->hasSection(kind)) sectionsBySlot_[k] = &content_->getSection(kind);
    }
}

VelCGFile::~VelCGFile() {
    endScriptAccess();
    try {
        reportWrittenFile();
    } catch (...) {
        // Warnings never make destruction fail.
    }
}

void VelCGFile::setIsWrittenToDisk(bool written) {
    writtenToDisk_ = written;
    if (written) reportWrittenFile();
}

void VelCGFile::reportWrittenFile() {
    // Once the file has been written, what did not reach it never will.
    if (!writingStarted_ || writingReported_) return;
    writingReported_ = true;
    if (!wroteText_ && !notEmpty_) vel::diag::warn(messages::VelCGFile::WrittenEmpty, {nameAscii_});
    customContents_.warnUnwrittenContent([this](VelCGFileSectionKind kind) { return hasSection(kind); });
}

const char* VelCGFile::getFullyQualifiedKorbTypeName() const { return "VelCG.VelCGFile"; }

void VelCGFile::setSystemsInFile(const std::vector<std::string>& systems) {
    files_detail::replaceUnique(systemsInFile_, systemsSeen_, systems);
}

void VelCGFile::addSystemToFile(const std::string& system) {
    files_detail::appendUnique(systemsInFile_, systemsSeen_, system);
}

bool VelCGFile::isEmpty() const { return !notEmpty_ && content_->isEmpty(); }

void VelCGFile::clearContents() {
    notEmpty_ = false;
    content_->clearContents();
}

bool VelCGFile::hasSection(VelCGFileSectionKind kind) const { return content_->hasSection(kind); }

namespace {
bool isSlot(VelCGFileSectionKind kind) {
    return static_cast<unsigned>(kind) < static_cast<unsigned>(kNumberOfSectionSlots);
}
} // namespace

FileSection& VelCGFile::getFileSection(VelCGFileSectionKind kind) {
    if (!isSlot(kind)) return content_->getSection(kind);
    FileSection*& section = sectionsBySlot_[kind];
    if (!section) section = &content_->getSection(kind);
    return *section;
}

const FileSection& VelCGFile::getFileSection(VelCGFileSectionKind kind) const {
    return isSlot(kind) && sectionsBySlot_[kind] ? *sectionsBySlot_[kind] : content_->getSection(kind);
}

namespace {
// Whether writing the section puts any byte in the file: an includes section
// renders its include lists even without fragments.
bool writesText(const FileSection& section) {
    if (const auto* includes = dynamic_cast<const IncludesSection*>(&section))
        return !includes->getContent().empty();
    return !section.isEmpty();
}
} // namespace

void VelCGFile::writeSectionToFile(VelCGFileSectionKind kind, std::FILE* stream) {
    writingStarted_ = true;
    if (!hasSection(kind)) return;
    if (!stream)
        vel::diag::throwError(messages::VelCGFile::NullStream,
                              {nameAscii_, getScrivSectionNameFromEnum(kind)});
    FileSection& section = getFileSection(kind);
    customContents_.appendMissingTokens(section, kind);
    wroteText_ = wroteText_ || writesText(section);
    section.writeToFile(stream);
}

} // namespace VelCG
