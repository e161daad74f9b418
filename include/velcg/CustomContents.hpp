#pragma once

#include <functional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>
#include <boost/unordered_set.hpp>

#include "velcg/Export.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG {

class CustomSection;
class FileSection;

// The custom sections and in-use tokens that code templates declared for one
// file. Custom sections are held by boost::shared_ptr; a copy of the
// registry refers to the same sections.
//
// Misuse raises host diagnostics of the catalogue "Brisk:codeGen":
//   "CustomContentPreviousAssociation"     name, new kind's Scriv name, old kind's Scriv name
//   "CustomContentSectionDoesNotExist"     file name, section name
//   "CustomContentSectionAlreadyRetrieved" section name, context, section name
// A failed call leaves the registry unchanged. A null content pointer raises
// "VelCG:CustomContents:NullContent".
//
// Warnings: "VelCG:CustomContents:TextAfterNul" (content dropped after an
// embedded NUL), and from warnUnwrittenContent
// "VelCG:CustomContents:PlacedNotRetrieved", "...:NoBuiltinSection" and
// "...:NotWritten".
class VELCG_API CustomContents {
public:
    using SectionPtr = boost::shared_ptr<CustomSection>;

    explicit CustomContents(std::string fileName);
    CustomContents(const CustomContents& other);
    CustomContents& operator=(const CustomContents& other);
    ~CustomContents();

    // Declares a custom section tied to builtin. Declaring it again with the
    // same kind does nothing; with another kind it fails.
    void addCustomSection(const std::string& name, VelCGFileSectionKind builtin);

    bool isCustomSection(const std::string& name) const;

    // Appends content to the declared section (allowed after retrieval).
    // The string form stops at an embedded NUL.
    void addContentToSection(const std::string& name, const std::string& content);
    void addContentToSection(const std::string& name, const char* content);

    // Takes the section's whole content out, once. An undeclared name gives
    // an empty string and no error; a second retrieval fails. The reference
    // stays valid until the section is next rendered.
    const std::string& getCustomSectionContent(const std::string& name, const std::string& context);

    // Records that a template placed the section `name` itself.
    void setCustomTokenInUse(const std::string& name);

    // Appends to target, in declaration order, the content of every section
    // tied to builtin that is required, not marked in use and not yet
    // retrieved, and marks each appended section retrieved.
    void appendMissingTokens(FileSection& target, VelCGFileSectionKind builtin);

    // Warns once for every section whose content has not reached the output
    // (neither retrieved nor appended) and is not empty, saying why: its
    // token was placed but the section never retrieved; the file has no
    // section of its built-in kind (fileHasSection answers that); or it was
    // otherwise never written. Called when the file is done with.
    void warnUnwrittenContent(const std::function<bool(VelCGFileSectionKind)>& fileHasSection) const;

private:
    bool sectionTokenInUse(const SectionPtr& section) const;

    boost::unordered_map<VelCGFileSectionKind, std::vector<SectionPtr>> sectionsByBuiltin_;
    boost::unordered_map<std::string, SectionPtr> sectionsByName_;
    boost::unordered_set<std::string> tokensInUse_;
    std::string emptyContent_;
    std::string fileName_;
};

} // namespace VelCG
