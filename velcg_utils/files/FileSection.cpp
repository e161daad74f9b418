#include "velcg/FileSection.hpp"

#include <cerrno>
#include <cstring>
#include <new>
#include <ostream>
#include <typeinfo>

#include <boost/make_shared.hpp>

#include "FilesDetail.hpp"
#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/StringFileSectionFragment.hpp"

namespace VelCG {

namespace files_detail {
void writeBytes(std::FILE* stream, const char* data, std::size_t size) {
    if (!stream) vel::diag::throwError(messages::FileSection::NullStream, {});
    if (size == 0) return;
    errno = 0;
    if (std::fwrite(data, 1, size, stream) != size)
        vel::diag::throwError(messages::FileSection::WriteFailed, {std::to_string(size), systemErrorText()});
}

void writeBytes(std::FILE* stream, const std::string& text) { writeBytes(stream, text.data(), text.size()); }

std::string systemErrorText() { return errno ? std::strerror(errno) : "the stream reports an error"; }

namespace {
// Collects the bytes of consecutive fragments and writes them in blocks of
// up to kBlockSize bytes: one stream call per block instead of one per
// fragment. Text of a block's size or more goes to the stream directly.
class BlockWriter {
public:
    explicit BlockWriter(std::FILE* stream) : stream_(stream) {}
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    void append(const std::string& text) {
        if (text.size() > kBlockSize - used_) {
            flush();
            if (text.size() >= kBlockSize) return writeBytes(stream_, text);
        }
        std::memcpy(block_ + used_, text.data(), text.size());
        used_ += text.size();
    }

    void flush() {
        writeBytes(stream_, block_, used_);
        used_ = 0;
    }

private:
    static constexpr std::size_t kBlockSize = 16 * 1024;
    std::FILE* stream_;
    std::size_t used_ = 0;
    char block_[kBlockSize];
};
} // namespace
} // namespace files_detail

FileSection::FileSection() = default;

FileSection::FileSection(const FileSection& other) : vel::mi::Handle(other), fragments_(other.fragments_) {}

FileSection::~FileSection() = default;

namespace {
constexpr std::align_val_t kSectionAlignment{64};
} // namespace

void* FileSection::operator new(std::size_t size) { return ::operator new(size, kSectionAlignment); }

void FileSection::operator delete(void* section, std::size_t) {
    ::operator delete(section, kSectionAlignment);
}

const char* FileSection::getFullyQualifiedKorbTypeName() const { return "VelCG.FileSection"; }

bool FileSection::isEmpty() const { return fragments_.empty(); }

void FileSection::printToStream(std::ostream& out) const {
    for (const FragmentPtr& f : fragments_) out << f->getContent();
}

const std::string& FileSection::getContent() const {
    if (!contentCache_) contentCache_ = std::make_unique<std::string>();
    std::string& cache = *contentCache_;
    cache.clear();
    for (const FragmentPtr& f : fragments_) cache += f->getContent();
    return cache;
}

void FileSection::addContent_cstr(const char* text) {
    addFragment(boost::make_shared<StringFileSectionFragment>(text));
}

void FileSection::addContent(const std::string& text) {
    addContent_cstr(text.c_str());
    const std::size_t kept = std::strlen(text.c_str());
    if (kept < text.size())
        vel::diag::warn(messages::FileSection::TextAfterNul,
                        {std::to_string(text.size() - kept), std::to_string(text.size())});
}

void FileSection::addFragment(FragmentPtr fragment) {
    if (!fragment) vel::diag::throwError(messages::FileSection::NullFragment, {});
    if (contentCache_) contentCache_->clear();
    fragments_.push_back(std::move(fragment));
}

void FileSection::writeToFile(std::FILE* stream) const {
    if (!stream) vel::diag::throwError(messages::FileSection::NullStream, {});
    files_detail::BlockWriter out(stream);
    for (const FragmentPtr& f : fragments_) {
        // A plain string fragment writes exactly its text, so its bytes can
        // join the block; any other class of fragment writes itself, after
        // what came before it.
        const FileSectionFragment& fragment = *f;
        if (typeid(fragment) == typeid(StringFileSectionFragment)) {
            out.append(static_cast<const StringFileSectionFragment&>(fragment)
                           .StringFileSectionFragment::getContent());
        } else {
            out.flush();
            f->writeToFile(stream);
        }
    }
    out.flush();
}

std::unique_ptr<FileSection> FileSection::clone() const { return std::make_unique<FileSection>(*this); }

void FileSection::clearContent() { fragments_.clear(); }

std::uint32_t FileSection::getNumberOfSectionFragments() const {
    return static_cast<std::uint32_t>(fragments_.size());
}

const std::string& FileSection::getSectionFragment(std::uint32_t i) const {
    if (i >= fragments_.size())
        vel::diag::throwError(messages::FileSection::InvalidFragmentIndex,
                              {std::to_string(i), std::to_string(fragments_.size())});
    return fragments_[i]->getContent();
}

} // namespace VelCG
