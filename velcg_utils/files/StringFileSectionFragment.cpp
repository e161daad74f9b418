#include "velcg/StringFileSectionFragment.hpp"

#include "vel/diag/Diagnostic.hpp"

namespace VelCG {

FileSectionFragment::~FileSectionFragment() = default;

namespace {
std::string textOrRaise(const char* text) {
    if (!text) vel::diag::throwError("VelCG:FileSection:NullContent", {});
    return text;
}
} // namespace

StringFileSectionFragment::StringFileSectionFragment(const char* text) : text_(textOrRaise(text)) {}

StringFileSectionFragment::~StringFileSectionFragment() = default;

void StringFileSectionFragment::writeToFile(std::FILE* stream) const {
    if (!stream) vel::diag::throwError("VelCG:FileSection:NullStream", {});
    if (text_.empty()) return;
    if (std::fwrite(text_.data(), 1, text_.size(), stream) != text_.size())
        vel::diag::throwError("VelCG:FileSection:WriteFailed", {std::to_string(text_.size())});
}

} // namespace VelCG
