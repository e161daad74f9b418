#include "velcg/FunctionsSection.hpp"

#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace VelCG {

namespace {
[[noreturn]] void invalidIndex(const char* what, std::int64_t index, std::size_t count) {
    vel::diag::throwError(messages::FunctionsSection::InvalidFunctionIndex,
                          {what, std::to_string(index), std::to_string(count)});
}
} // namespace

FunctionsSection::FunctionsSection() = default;
FunctionsSection::FunctionsSection(const FunctionsSection& other) = default;
FunctionsSection::~FunctionsSection() = default;

const char* FunctionsSection::getFullyQualifiedKorbTypeName() const { return "VelCG.FunctionsSection"; }

void FunctionsSection::addFunction(const std::string& name, const std::string& text) {
    addContent(text);
    functionNames_.push_back(name);
}

std::uint32_t FunctionsSection::getNumberOfFunctions() const { return getNumberOfSectionFragments(); }

const std::string& FunctionsSection::getFunction(std::uint32_t i) const {
    if (i >= getNumberOfSectionFragments()) invalidIndex("Function", i, getNumberOfSectionFragments());
    return getSectionFragment(i);
}

const std::string& FunctionsSection::getFunctionName(std::uint32_t i) const {
    // Plain content added to the section has no name, so there may be fewer
    // names than functions.
    if (i >= functionNames_.size()) invalidIndex("Function name", i, functionNames_.size());
    return functionNames_[i];
}

const std::string& FunctionsSection::korb_getFunction(std::int32_t i) const {
    if (i < 1 || static_cast<std::uint32_t>(i) > getNumberOfSectionFragments())
        invalidIndex("Function", i, getNumberOfSectionFragments());
    return getFunction(static_cast<std::uint32_t>(i - 1));
}

const std::string& FunctionsSection::korb_getFunctionName(std::int32_t i) const {
    if (i < 1 || static_cast<std::size_t>(i) > functionNames_.size())
        invalidIndex("Function name", i, functionNames_.size());
    return getFunctionName(static_cast<std::uint32_t>(i - 1));
}

std::unique_ptr<FileSection> FunctionsSection::clone() const {
    return std::make_unique<FunctionsSection>(*this);
}

} // namespace VelCG
