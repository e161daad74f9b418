#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"
#include "velcg/FileSectionFragment.hpp"

namespace VelCG {

// One section of a generated file: an ordered list of text fragments. The
// fragments are held by boost::shared_ptr (as are custom sections, see
// CustomContents): a cloned section shares them with its original.
//
// Sections render and write their fragments in insertion order with nothing
// between them; fragments carry their own line ends.
//
// Diagnostics: "VelCG:FileSection:NullContent" (null text),
// "VelCG:FileSection:NullFragment" (null fragment),
// "VelCG:FileSection:NullStream" (null stream),
// "VelCG:FileSection:WriteFailed" (the stream refused bytes).
// Warnings: "VelCG:FileSection:TextAfterNul" (addContent dropped text).
class VELCG_API FileSection : public vel::mi::Handle {
public:
    using FragmentPtr = boost::shared_ptr<FileSectionFragment>;

    FileSection();
    FileSection(const FileSection& other);
    FileSection& operator=(const FileSection&) = delete;
    ~FileSection() override;

    // Sections are allocated on a cache line of their own: a template that
    // sweeps many files reaches each section's fragment list in one line.
    static void* operator new(std::size_t size);
    static void operator delete(void* section, std::size_t size);

    // "VelCG.FileSection".
    const char* getFullyQualifiedKorbTypeName() const override;

    // True when the section has no fragments; a section holding only empty
    // strings is not empty.
    virtual bool isEmpty() const;

    // Writes every fragment's text to out, in order.
    virtual void printToStream(std::ostream& out) const;

    // The concatenated text of the fragments. The reference stays valid
    // until the next call on this section.
    virtual const std::string& getContent() const;

    // Appends text up to its terminating NUL as a new fragment.
    virtual void addContent_cstr(const char* text);

    // Appends the string's character data through addContent_cstr, so text
    // after an embedded NUL is dropped (with a warning).
    virtual void addContent(const std::string& text);

    // Appends the fragment itself (shared, not copied).
    virtual void addFragment(FragmentPtr fragment);

    // Writes every fragment's bytes to stream, in order. The bytes of
    // consecutive plain string fragments reach the stream in large blocks;
    // other fragments write themselves.
    virtual void writeToFile(std::FILE* stream) const;

    // A new section of the same class holding the same fragments.
    virtual std::unique_ptr<FileSection> clone() const;

    // Removes all fragments.
    virtual void clearContent();

protected:
    virtual std::uint32_t getNumberOfSectionFragments() const;

    // The text of fragment i (from 0).
    // REQUIRES: i < getNumberOfSectionFragments(); a larger i raises
    // "VelCG:FileSection:InvalidFragmentIndex".
    virtual const std::string& getSectionFragment(std::uint32_t i) const;

private:
    // In order of addition; a vector, so that writing walks them in one
    // sweep and appending allocates only now and then.
    std::vector<FragmentPtr> fragments_;
    // The last rendering, allocated by the first getContent: most sections
    // are only ever written, never rendered.
    mutable std::unique_ptr<std::string> contentCache_;
};

} // namespace VelCG
