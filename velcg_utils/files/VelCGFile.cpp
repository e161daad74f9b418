#include "velcg/VelCGFile.hpp"

#include <boost/filesystem/path.hpp>

#include "FilesDetail.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/VelCGFileContent.hpp"
#include "velcg/VelCGFileContentBuilder.hpp"
#include "velcg/VelCGFileContentCreator.hpp"

namespace VelCG {

namespace {
std::unique_ptr<VelCGFileContent> buildContent(const std::string& name,
                                               std::unique_ptr<VelCGFileContentBuilder> builder) {
    if (!builder) vel::diag::throwError("VelCG:VelCGFile:NullBuilder", {name});
    std::unique_ptr<VelCGFileContent> content = VelCGFileContentCreator::createFileContent(*builder);
    // A builder that allocated no table leaves the file without sections.
    return content ? std::move(content) : std::make_unique<VelCGFileContent>();
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
      baseName_(boost::filesystem::path(name).stem().string()),
      nameWithoutExtension_(withoutLastExtension(name)),
      customContents_(name) {
    for (int k = 0; k < kNumberOfSectionSlots; ++k)
        sectionsBySlot_[k] = &content_->getSection(static_cast<VelCGFileSectionKind>(k));
}

VelCGFile::~VelCGFile() {
    endScriptAccess();
    // Once the file has been written, custom content that did not reach it
    // never will.
    if (!writingStarted_) return;
    try {
        customContents_.warnUnwrittenContent([this](VelCGFileSectionKind kind) { return hasSection(kind); });
    } catch (...) {
        // Warnings never make destruction fail.
    }
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
    return isSlot(kind) ? *sectionsBySlot_[kind] : content_->getSection(kind);
}

const FileSection& VelCGFile::getFileSection(VelCGFileSectionKind kind) const {
    return isSlot(kind) ? *sectionsBySlot_[kind] : content_->getSection(kind);
}

void VelCGFile::writeSectionToFile(VelCGFileSectionKind kind, std::FILE* stream) {
    writingStarted_ = true;
    if (!hasSection(kind)) return;
    if (!stream)
        vel::diag::throwError("VelCG:VelCGFile:NullStream", {nameAscii_, getScrivSectionNameFromEnum(kind)});
    FileSection& section = getFileSection(kind);
    customContents_.appendMissingTokens(section, kind);
    section.writeToFile(stream);
}

} // namespace VelCG
