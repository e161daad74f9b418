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
// whose slot is empty reads as an empty section that stands in for it and
// discards whatever is added to it. The table owns its sections.
class VELCG_API VelCGFileContent {
public:
    // Stands in for a section a file does not have: always empty, renders
    // as "", and drops what is added to it, warning
    // "VelCG:VelCGFileContent:MissingSection" when text is dropped (bytes,
    // section, file name, file kind, the sections the file has). A copy
    // keeps what its original's warnings say.
    class VELCG_API EmptyFileSection : public FileSection {
    public:
        // A stand-in for no table: its warnings name no file and an
        // out-of-range section.
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
        friend class VelCGFileContent;
        // The stand-in for slot `kind` of owner (-1: a kind outside the table).
        EmptyFileSection(const VelCGFileContent* owner, int kind);
        // What the warnings say after the number of bytes.
        std::vector<std::string> context() const;
        void warnDropped(std::size_t bytes) const;

        std::string emptyString_;
        const VelCGFileContent* owner_ = nullptr; // null for a copy
        int kind_ = -1;
        std::vector<std::string> copiedContext_; // a copy's context
    };

    VelCGFileContent();
    // Clones every filled section.
    VelCGFileContent(const VelCGFileContent& other);
    VelCGFileContent& operator=(const VelCGFileContent& other);
    ~VelCGFileContent();

    // The section in the kind's slot, or the empty section that stands in
    // for it when the slot is empty (one per slot, made on first use; one
    // for every kind outside the table). The constant form answers a shared
    // empty section for a slot whose stand-in was never asked for.
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

    // The name of the file the table belongs to, for the stand-ins'
    // warnings; empty until set.
    const std::string& getFileName() const { return fileName_; }
    void setFileName(const std::string& fileName) { fileName_ = fileName; }

private:
    // Held in the table itself, so that reaching a section is one step.
    std::array<std::unique_ptr<FileSection>, kNumberOfSectionSlots> sections_;
    std::array<std::unique_ptr<EmptyFileSection>, kNumberOfSectionSlots> standIns_;
    // For the kinds outside the table, and the constant form.
    EmptyFileSection emptySection_;
    std::string fileName_;
};

} // namespace VelCG
