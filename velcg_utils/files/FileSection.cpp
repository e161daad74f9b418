#include "velcg/FileSection.hpp"

#include <iterator>
#include <ostream>

#include "FilesDetail.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/StringFileSectionFragment.hpp"

namespace VelCG {

namespace files_detail {
void writeBytes(std::FILE* stream, const std::string& text) {
    if (!stream) vel::diag::throwError("VelCG:FileSection:NullStream", {});
    if (text.empty()) return;
    if (std::fwrite(text.data(), 1, text.size(), stream) != text.size())
        vel::diag::throwError("VelCG:FileSection:WriteFailed", {std::to_string(text.size())});
}
} // namespace files_detail

FileSection::FileSection() = default;

FileSection::FileSection(const FileSection& other) : vel::mi::Handle(other), fragments_(other.fragments_) {}

FileSection::~FileSection() = default;

const char* FileSection::getFullyQualifiedKorbTypeName() const { return "VelCG.FileSection"; }

bool FileSection::isEmpty() const { return fragments_.empty(); }

void FileSection::printToStream(std::ostream& out) const {
    for (const FragmentPtr& f : fragments_) out << f->getContent();
}

const std::string& FileSection::getContent() const {
    contentCache_.clear();
    for (const FragmentPtr& f : fragments_) contentCache_ += f->getContent();
    return contentCache_;
}

void FileSection::addContent_cstr(const char* text) {
    addFragment(boost::shared_ptr<FileSectionFragment>(new StringFileSectionFragment(text)));
}

void FileSection::addContent(const std::string& text) { addContent_cstr(text.c_str()); }

void FileSection::addFragment(FragmentPtr fragment) {
    if (!fragment) vel::diag::throwError("VelCG:FileSection:NullFragment", {});
    contentCache_.clear();
    fragments_.push_back(std::move(fragment));
}

void FileSection::writeToFile(std::FILE* stream) const {
    if (!stream) vel::diag::throwError("VelCG:FileSection:NullStream", {});
    for (const FragmentPtr& f : fragments_) f->writeToFile(stream);
}

std::unique_ptr<FileSection> FileSection::clone() const { return std::make_unique<FileSection>(*this); }

void FileSection::clearContent() { fragments_.clear(); }

std::uint32_t FileSection::getNumberOfSectionFragments() const {
    return static_cast<std::uint32_t>(fragments_.size());
}

const std::string& FileSection::getSectionFragment(std::uint32_t i) const {
    if (i >= fragments_.size())
        vel::diag::throwError("VelCG:FileSection:InvalidFragmentIndex",
                              {std::to_string(i), std::to_string(fragments_.size())});
    return (*std::next(fragments_.begin(), i))->getContent();
}

} // namespace VelCG
