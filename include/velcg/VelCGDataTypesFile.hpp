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

    using VelCGFile::getDefinesSection;
    using VelCGFile::getIncludesSection;
    using VelCGFile::getTypedefsSection;
    using VelCGFile::korb_getDefinesSection;
    using VelCGFile::korb_getIncludesSection;
    using VelCGFile::korb_getTypedefsSection;
};

} // namespace VelCG
