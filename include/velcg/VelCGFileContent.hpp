#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "velcg/Export.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG {

// The section table of one file: one slot per section kind (23 slots, the
// last never filled), each empty until a content builder fills it. A kind
// whose slot is empty reads as the shared empty section, which discards
// whatever is added to it. The table owns its sections.
class VELCG_API VelCGFileContent {
public:
    // Stands in for every section a file does not have: always empty,
    // renders as "", and drops what is added to it, warning
    // "VelCG:VelCGFileContent:MissingSection" when text is dropped.
    class VELCG_API EmptyFileSection : public FileSection {
    public:
        EmptyFileSection();
        EmptyFileSection(const EmptyFileSection& other);
        ~EmptyFileSection() override;

        void addContent_cstr(const char* text) override;
        void addContent(const std::string& text) override;
        void addFragment(FragmentPtr fragment) override;
        std::unique_ptr<FileSection> clone() const override;

    protected:
        const std::string& getSectionFragment(std::uint32_t i) const override;

    private:
        std::string emptyString_;
    };

    VelCGFileContent();
    // Clones every filled section.
    VelCGFileContent(const VelCGFileContent& other);
    VelCGFileContent& operator=(const VelCGFileContent& other);
    ~VelCGFileContent();

    // The section in the kind's slot, or the empty section when the slot is
    // empty or the kind is outside the table.
    FileSection& getSection(VelCGFileSectionKind kind);
    const FileSection& getSection(VelCGFileSectionKind kind) const;

    // Whether the kind's slot is filled; false for every value outside 0..22.
    bool hasSection(VelCGFileSectionKind kind) const;

    // True when every filled section is empty (or no slot is filled).
    bool isEmpty() const;

    // Clears every filled section.
    void clearContents();

    // Fills the kind's slot, replacing (and destroying) what stood there.
    // Used by the content builders. A kind outside 0..22 or a null section
    // raises "VelCG:VelCGFileContent:InvalidSlot".
    void setSection(VelCGFileSectionKind kind, std::unique_ptr<FileSection> section);

private:
    // Held in the table itself, so that reaching a section is one step.
    std::array<std::unique_ptr<FileSection>, kNumberOfSectionSlots> sections_;
    EmptyFileSection emptySection_;
};

} // namespace VelCG
