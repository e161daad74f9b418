#pragma once

#include <string>

#include "velcg/FileSectionFragment.hpp"

namespace VelCG {

// A fragment holding one narrow string, written byte for byte: exactly the
// string's length, no terminator and no line end added.
class VELCG_API StringFileSectionFragment : public FileSectionFragment {
public:
    StringFileSectionFragment() = default;
    explicit StringFileSectionFragment(std::string text) : text_(std::move(text)) {}
    // A null pointer raises "VelCG:FileSection:NullContent".
    explicit StringFileSectionFragment(const char* text);
    StringFileSectionFragment(const StringFileSectionFragment&) = default;
    ~StringFileSectionFragment() override;

    const std::string& getContent() const override { return text_; }
    void writeToFile(std::FILE* stream) const override;

private:
    std::string text_;
};

} // namespace VelCG
