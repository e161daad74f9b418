#pragma once

#include <cstdio>
#include <string>

#include "velcg/Export.hpp"

namespace VelCG {

// One piece of a section's text. Fragments are shared between sections (a
// cloned section holds the same fragments), so they are immutable once made.
class VELCG_API FileSectionFragment {
public:
    virtual ~FileSectionFragment();

    // The fragment's text. The reference lives as long as the fragment.
    virtual const std::string& getContent() const = 0;

    // Writes the fragment's bytes to an open stream.
    // REQUIRES: stream is not null (a null stream raises a diagnostic).
    virtual void writeToFile(std::FILE* stream) const = 0;

protected:
    FileSectionFragment() = default;
    FileSectionFragment(const FileSectionFragment&) = default;
    FileSectionFragment& operator=(const FileSectionFragment&) = default;
};

} // namespace VelCG
