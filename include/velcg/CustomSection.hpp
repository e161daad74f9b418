#pragma once

#include <string>

#include "velcg/FileSection.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG {

// A section that a code template declares for a file, tied to one built-in
// section kind. Its content reaches the output at most once: either a
// template retrieves it, or it is appended to its built-in section before
// that is written (see CustomContents). Sections tied to the documentation
// kind are not required and are never appended.
class VELCG_API CustomSection : public FileSection {
public:
    CustomSection(std::string name, VelCGFileSectionKind builtinSection);
    CustomSection(const CustomSection& other);
    ~CustomSection() override;

    std::unique_ptr<FileSection> clone() const override;

    const std::string& getName() const { return name_; }
    VelCGFileSectionKind getBuiltinSection() const { return builtinSection_; }
    bool isRequired() const { return isRequired_; }
    bool isRetrieved() const { return isRetrieved_; }
    // One way only: a retrieved section stays retrieved.
    void setIsRetrieved() { isRetrieved_ = true; }

    // The name followed by "_InUse".
    std::string getSectionToken() const;

private:
    std::string name_;
    VelCGFileSectionKind builtinSection_;
    bool isRetrieved_ = false;
    bool isRequired_;
};

} // namespace VelCG
