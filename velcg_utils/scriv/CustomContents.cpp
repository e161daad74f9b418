#include "velcg/CustomContents.hpp"

#include <algorithm>
#include <cstring>

#include "Messages.hpp"
#include "brisk/Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CustomSection.hpp"

namespace VelCG {

namespace {
// The registry's containers start with 16 buckets and a maximum load factor
// of 1.
constexpr std::size_t kInitialBuckets = 16;

template <class Container>
void configure(Container& c) {
    c.max_load_factor(1.0f);
    c.rehash(kInitialBuckets);
}

std::string kindName(VelCGFileSectionKind kind) {
    std::string name = getScrivSectionNameFromEnum(kind);
    if (name.empty()) name = getSectionKindEnumName(kind);
    return name.empty() ? std::to_string(static_cast<int>(kind)) : name;
}
} // namespace

CustomContents::CustomContents(std::string fileName) : fileName_(std::move(fileName)) {
    configure(sectionsByBuiltin_);
    configure(sectionsByName_);
    configure(tokensInUse_);
}

CustomContents::CustomContents(const CustomContents& other) = default;
CustomContents& CustomContents::operator=(const CustomContents& other) = default;
CustomContents::~CustomContents() = default;

void CustomContents::addCustomSection(const std::string& name, VelCGFileSectionKind builtin) {
    auto found = sectionsByName_.find(name);
    if (found != sectionsByName_.end()) {
        VelCGFileSectionKind previous = found->second->getBuiltinSection();
        if (previous == builtin) return; // the same declaration again
        vel::diag::throwError(
            brisk::messages::CustomContentPreviousAssociation,
            {name, getScrivSectionNameFromEnum(builtin), getScrivSectionNameFromEnum(previous)});
    }
    SectionPtr section(new CustomSection(name, builtin));
    // Reserve the list slot before entering the name so that a failure
    // leaves both maps as they were.
    std::vector<SectionPtr>& list = sectionsByBuiltin_[builtin];
    list.reserve(list.size() + 1);
    sectionsByName_.emplace(name, section);
    list.push_back(section);
}

bool CustomContents::isCustomSection(const std::string& name) const {
    return sectionsByName_.count(name) != 0;
}

void CustomContents::addContentToSection(const std::string& name, const std::string& content) {
    addContentToSection(name, content.c_str());
    const std::size_t kept = std::strlen(content.c_str());
    if (kept < content.size())
        vel::diag::warn(messages::CustomContents::TextAfterNul,
                        {fileName_, name, std::to_string(content.size() - kept)});
}

void CustomContents::addContentToSection(const std::string& name, const char* content) {
    auto found = sectionsByName_.find(name);
    if (found == sectionsByName_.end())
        vel::diag::throwError(brisk::messages::CustomContentSectionDoesNotExist, {fileName_, name});
    if (!content) vel::diag::throwError(messages::CustomContents::NullContent, {fileName_, name});
    found->second->addContent_cstr(content);
}

const std::string& CustomContents::getCustomSectionContent(const std::string& name,
                                                           const std::string& context) {
    auto found = sectionsByName_.find(name);
    if (found == sectionsByName_.end()) return emptyContent_;
    CustomSection& section = *found->second;
    if (section.isRetrieved())
        vel::diag::throwError(brisk::messages::CustomContentSectionAlreadyRetrieved, {name, context, name});
    section.setIsRetrieved();
    return section.getContent();
}

void CustomContents::setCustomTokenInUse(const std::string& name) { tokensInUse_.insert(name + "_InUse"); }

void CustomContents::appendMissingTokens(FileSection& target, VelCGFileSectionKind builtin) {
    auto found = sectionsByBuiltin_.find(builtin);
    if (found == sectionsByBuiltin_.end()) return;
    for (const SectionPtr& section : found->second) {
        if (!section->isRequired() || sectionTokenInUse(section) || section->isRetrieved()) continue;
        target.addContent(section->getContent());
        section->setIsRetrieved();
    }
}

void CustomContents::warnUnwrittenContent(
    const std::function<bool(VelCGFileSectionKind)>& fileHasSection) const {
    // Kinds in order, so that the warnings come in the same order every run.
    std::vector<VelCGFileSectionKind> kinds;
    for (const auto& entry : sectionsByBuiltin_) kinds.push_back(entry.first);
    std::sort(kinds.begin(), kinds.end());
    for (VelCGFileSectionKind kind : kinds) {
        for (const SectionPtr& section : sectionsByBuiltin_.at(kind)) {
            if (section->isRetrieved()) continue;
            const std::size_t size = section->getContent().size();
            if (size == 0) continue;
            const std::string bytes = std::to_string(size);
            if (sectionTokenInUse(section))
                vel::diag::warn(messages::CustomContents::PlacedNotRetrieved,
                                {fileName_, section->getName(), bytes});
            else if (!fileHasSection(kind))
                vel::diag::warn(messages::CustomContents::NoBuiltinSection,
                                {fileName_, section->getName(), kindName(kind), bytes});
            else
                vel::diag::warn(messages::CustomContents::NotWritten,
                                {fileName_, section->getName(), kindName(kind), bytes});
        }
    }
}

bool CustomContents::sectionTokenInUse(const SectionPtr& section) const {
    return tokensInUse_.count(section->getSectionToken()) != 0;
}

} // namespace VelCG
