#pragma once

#include <string>

#include "velcg/FileSection.hpp"
#include "velcg/VelCGFile.hpp"

namespace VelCG {

// The model's data-types header: Includes, Defines and Typedefs sections.
class VELCG_API VelCGDataTypesFile : public VelCGFile {
public:
    explicit VelCGDataTypesFile(const std::string& name);
    ~VelCGDataTypesFile() override;

    // "VelCG.VelCGDataTypesFile".
    const char* getFullyQualifiedKorbTypeName() const override;

    FileSection& getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
    const FileSection& getIncludesSection() const { return getFileSection(INCLUDES_SECTION); }
    FileSection* korb_getIncludesSection() { return &getFileSection(INCLUDES_SECTION); }
    FileSection& getDefinesSection() { return getFileSection(DEFINES_SECTION); }
    const FileSection& getDefinesSection() const { return getFileSection(DEFINES_SECTION); }
    FileSection* korb_getDefinesSection() { return &getFileSection(DEFINES_SECTION); }
    FileSection& getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
    const FileSection& getTypedefsSection() const { return getFileSection(TYPEDEFS_SECTION); }
    FileSection* korb_getTypedefsSection() { return &getFileSection(TYPEDEFS_SECTION); }
};

} // namespace VelCG
