#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velcg/FileSection.hpp"

namespace VelCG {

// The functions section of a module file: each function's text is one
// fragment, and its name is kept beside it. Plain content added through the
// FileSection interface counts as a function without a name.
//
// Index errors raise "VelCG:FunctionsSection:InvalidFunctionIndex".
class VELCG_API FunctionsSection : public FileSection {
public:
    FunctionsSection();
    FunctionsSection(const FunctionsSection& other);
    ~FunctionsSection() override;

    // "VelCG.FunctionsSection".
    const char* getFullyQualifiedKorbTypeName() const override;

    // Adds text as one fragment (up to an embedded NUL) and records name.
    // Names are not de-duplicated.
    void addFunction(const std::string& name, const std::string& text);

    // The number of fragments of the section.
    std::uint32_t getNumberOfFunctions() const;

    // Text of fragment i and entry i of the names, counted from 0.
    // REQUIRES: i below the number of fragments (resp. of names).
    const std::string& getFunction(std::uint32_t i) const;
    const std::string& getFunctionName(std::uint32_t i) const;

    // The same for host scripts, counted from 1.
    const std::string& korb_getFunction(std::int32_t i) const;
    const std::string& korb_getFunctionName(std::int32_t i) const;

    std::unique_ptr<FileSection> clone() const override;

private:
    std::vector<std::string> functionNames_;
};

} // namespace VelCG
