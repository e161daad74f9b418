#include "velcg/StringFileSectionFragment.hpp"

#include "FilesDetail.hpp"
#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace VelCG {

FileSectionFragment::~FileSectionFragment() = default;

namespace {
std::string textOrRaise(const char* text) {
    if (!text) vel::diag::throwError(messages::FileSection::NullContent, {});
    return text;
}
} // namespace

StringFileSectionFragment::StringFileSectionFragment(const char* text) : text_(textOrRaise(text)) {}

StringFileSectionFragment::~StringFileSectionFragment() = default;

void StringFileSectionFragment::writeToFile(std::FILE* stream) const {
    files_detail::writeBytes(stream, text_);
}

} // namespace VelCG
