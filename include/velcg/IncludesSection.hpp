#pragma once

#include <string>
#include <vector>

#include <boost/unordered_set.hpp>

#include "velcg/FileSection.hpp"

namespace VelCG {

// The includes section of a file. It collects #include lines without
// repeating a header, and merges the required and utility include lists that
// the code generator gathers into the text the scripts wrote:
//
//   required includes, system utility includes   (unless already in the text)
//   the scripts' text
//   local utility includes                       (unless already in the text)
//
// An include list entry is either written with its angle brackets
// ("<stdio.h>") or bare ("model.h"), which renders in double quotes. The
// "already in the text" test looks for the whole line including a leading
// newline, and only in the scripts' text.
class VELCG_API IncludesSection : public FileSection {
public:
    IncludesSection();
    IncludesSection(const IncludesSection& other);
    ~IncludesSection() override;

    // "VelCG.IncludesSection".
    const char* getFullyQualifiedKorbTypeName() const override;

    // Adds the line `#include <name>` (isSystem) or `#include "name"`, unless
    // a name equal to `name` was added before in either form.
    void addInclude(const std::string& name, bool isSystem);

    // Append the name unless the list already holds it.
    void addRequiredInclude(const std::string& name);
    void addUtilityInclude(const std::string& name);

    // Replace the list as given (duplicates kept).
    void setRequiredIncludes(const std::vector<std::string>& includes);
    void setUtilityIncludes(const std::vector<std::string>& includes);

    const std::vector<std::string>& getRequiredIncludes() const { return requiredIncludes_; }
    const std::vector<std::string>& getUtilityIncludes() const { return utilityIncludes_; }

    // The merged rendering, built afresh on each call. The reference stays
    // valid until the next call on this section.
    const std::string& getContent() const override;

    // Writes the merged rendering in one block.
    void writeToFile(std::FILE* stream) const override;

    std::unique_ptr<FileSection> clone() const override;

private:
    boost::unordered_set<std::string> addedNames_;
    std::vector<std::string> requiredIncludes_;
    boost::unordered_set<std::string> requiredSeen_;
    std::vector<std::string> utilityIncludes_;
    boost::unordered_set<std::string> utilitySeen_;
    mutable std::string rendered_;
};

} // namespace VelCG
