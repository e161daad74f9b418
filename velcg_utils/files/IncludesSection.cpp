#include "velcg/IncludesSection.hpp"

#include "FilesDetail.hpp"

namespace VelCG {

namespace {

// The line an include list entry renders as, with a newline on both sides
// so that the presence test matches whole lines only.
std::string includeLine(const std::string& entry) {
    if (entry.empty()) return std::string();
    if (entry[0] == '<') return "\n#include " + entry + "\n";
    return "\n#include \"" + entry + "\"\n";
}

bool isSystemEntry(const std::string& entry) { return !entry.empty() && entry[0] == '<'; }

void appendIfAbsent(std::string& out, const std::string& line, const std::string& scriptText) {
    // An empty line (from an empty entry) is always "found" and adds nothing.
    if (scriptText.find(line) == std::string::npos) out += line;
}

} // namespace

using files_detail::appendUnique;
using files_detail::replaceUnique;

IncludesSection::IncludesSection() = default;
IncludesSection::IncludesSection(const IncludesSection& other) = default;
IncludesSection::~IncludesSection() = default;

const char* IncludesSection::getFullyQualifiedKorbTypeName() const { return "VelCG.IncludesSection"; }

void IncludesSection::addInclude(const std::string& name, bool isSystem) {
    if (addedNames_.count(name)) return;
    const std::string line = isSystem ? "#include <" + name + ">\n" : "#include \"" + name + "\"\n";
    addContent(line);
    addedNames_.insert(name);
}

void IncludesSection::addRequiredInclude(const std::string& name) {
    appendUnique(requiredIncludes_, requiredSeen_, name);
}

void IncludesSection::addUtilityInclude(const std::string& name) {
    appendUnique(utilityIncludes_, utilitySeen_, name);
}

void IncludesSection::setRequiredIncludes(const std::vector<std::string>& includes) {
    replaceUnique(requiredIncludes_, requiredSeen_, includes);
}

void IncludesSection::setUtilityIncludes(const std::vector<std::string>& includes) {
    replaceUnique(utilityIncludes_, utilitySeen_, includes);
}

const std::string& IncludesSection::getContent() const {
    const std::string& scriptText = FileSection::getContent();
    rendered_.clear();
    for (const std::string& r : requiredIncludes_) appendIfAbsent(rendered_, includeLine(r), scriptText);
    for (const std::string& u : utilityIncludes_)
        if (isSystemEntry(u)) appendIfAbsent(rendered_, includeLine(u), scriptText);
    rendered_ += scriptText;
    for (const std::string& u : utilityIncludes_)
        if (!u.empty() && !isSystemEntry(u)) appendIfAbsent(rendered_, includeLine(u), scriptText);
    return rendered_;
}

void IncludesSection::writeToFile(std::FILE* stream) const { files_detail::writeBytes(stream, getContent()); }

std::unique_ptr<FileSection> IncludesSection::clone() const {
    return std::make_unique<IncludesSection>(*this);
}

} // namespace VelCG
