// Runs a sequence of name-based file operations through FileRepScrivBridge
// over a repository holding one file of each kind. File indices and names
// come from the input: the real attribute and section names, variations of
// them (embedded NUL, invalid UTF-8) and arbitrary strings. Every failure
// must be a host diagnostic with an identifier; operations on a valid file
// with a name the bridge lists must succeed and read back what was set; a
// section written to a stream must give exactly the section's text.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace {

using VelCG::FileRepScrivBridge;
using VelCG::VelCGFileSectionKind;

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "bridge fuzzer: %s\n", what.c_str());
    std::abort();
}

const std::vector<std::string> kBooleanNames = {
    "Filter", "IsEmpty", "WrittenToDisk", "Indent", "Shared", "SharedType", "DeferredIncludeCoderTypes"};
const std::vector<std::string> kStringSetNames = {
    "BaseName",        "Type",         "Creator",         "SystemsInFile", "RequiredIncludes",
    "UtilityIncludes", "CodeTemplate", "OutputDirectory", "Group",         "DefinedMacro"};
const std::vector<std::string> kStringReadNames = {
    "Name",  "BaseName",    "NameWithoutExtension", "Type", "Creator", "CodeTemplate", "OutputDirectory",
    "Group", "DefinedMacro"};
const std::vector<std::string> kStringListNames = {"SystemsInFile", "RequiredIncludes", "UtilityIncludes"};

// Scriv section names with their kinds.
struct SectionName {
    std::string name;
    VelCGFileSectionKind kind;
};

const std::vector<SectionName>& sectionNames() {
    static const std::vector<SectionName> names = [] {
        std::vector<SectionName> out;
        for (int k = 0; k < VelCG::kNumberOfSectionKinds; ++k) {
            const auto kind = static_cast<VelCGFileSectionKind>(k);
            std::string name = VelCG::getScrivSectionNameFromEnum(kind);
            if (!name.empty()) out.push_back({name, kind});
        }
        return out;
    }();
    return names;
}

bool contains(const std::vector<std::string>& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

const SectionName* findSection(const std::string& name) {
    for (const SectionName& s : sectionNames())
        if (s.name == name) return &s;
    return nullptr;
}

// Every name any operation knows, then "Types" (custom typedefs sections).
std::vector<std::string> allNames() {
    std::vector<std::string> out;
    for (const auto* list : {&kBooleanNames, &kStringSetNames, &kStringReadNames, &kStringListNames})
        out.insert(out.end(), list->begin(), list->end());
    for (const SectionName& s : sectionNames()) out.push_back(s.name);
    out.push_back("Types");
    return out;
}

const std::string& pick(FuzzedDataProvider& in, const std::vector<std::string>& list) {
    return list[in.ConsumeIntegralInRange<std::size_t>(0, list.size() - 1)];
}

std::string pickName(FuzzedDataProvider& in, const std::vector<std::string>& known) {
    switch (in.ConsumeIntegralInRange<int>(0, 7)) {
        case 0:
            return in.ConsumeRandomLengthString(24);
        case 1: // A known name with a NUL and more after it.
            return pick(in, known) + std::string(1, '\0') + in.ConsumeRandomLengthString(4);
        case 2: // A known name followed by a byte that is not UTF-8.
            return pick(in, known) + "\xff";
        default:
            return pick(in, known);
    }
}

std::int32_t pickIndex(FuzzedDataProvider& in, std::int32_t count) {
    if (in.ConsumeIntegralInRange<int>(0, 9) == 0) return in.ConsumeIntegral<std::int32_t>();
    return in.ConsumeIntegralInRange<std::int32_t>(-1, count);
}

std::string readBack(std::FILE* stream, long from) {
    std::fflush(stream);
    const long to = std::ftell(stream);
    std::string out(static_cast<std::size_t>(to - from), '\0');
    std::fseek(stream, from, SEEK_SET);
    if (!out.empty() && std::fread(&out[0], 1, out.size(), stream) != out.size())
        fail("cannot read the stream");
    std::fseek(stream, to, SEEK_SET);
    return out;
}

class Run {
public:
    explicit Run(FuzzedDataProvider& in) : in_(in), bridge_(repository_.scrivBridge()) {
        repository_.createModuleHeaderFile("model.h", {0});
        repository_.createModuleSourceFile("model.c", {0});
        repository_.createGenericFile("notes.txt");
        repository_.createDataTypesFile("model_types.h");
        count_ = static_cast<std::int32_t>(repository_.getFileList().size());
        stream_ = std::tmpfile();
        if (!stream_) fail("no temporary file");
    }
    ~Run() { std::fclose(stream_); }

    void step() {
        const std::int32_t index = pickIndex(in_, count_);
        const bool validIndex = index >= 0 && index < count_;
        const int op = in_.ConsumeIntegralInRange<int>(0, 9);
        bool mustSucceed = false;
        try {
            switch (op) {
                case 0: {
                    const std::string name = pickName(in_, kBooleanNames);
                    mustSucceed = validIndex && contains(kBooleanNames, name);
                    bridge_.getBooleanAttribute(index, name);
                    break;
                }
                case 1: {
                    const std::string name = pickName(in_, kBooleanNames);
                    const bool value = in_.ConsumeBool();
                    mustSucceed = validIndex && contains(kBooleanNames, name);
                    bridge_.setAttribute(index, name, value);
                    if (mustSucceed) {
                        const bool expected =
                            name == "IsEmpty" ? bridge_.getBooleanAttribute(index, name) : value;
                        if (bridge_.getBooleanAttribute(index, name) != expected)
                            fail("boolean attribute " + name + " does not read back");
                        if (name == "IsEmpty" && !value && bridge_.getBooleanAttribute(index, name))
                            fail("setting IsEmpty false left the file empty");
                    }
                    break;
                }
                case 2: {
                    const std::string name = pickName(in_, names_);
                    mustSucceed = validIndex && (contains(kStringReadNames, name) || findSection(name));
                    const char* text = bridge_.getStringAttribute(index, name);
                    if (!text) fail("null string attribute " + name);
                    if (const SectionName* s = findSection(name)) {
                        // A C string: it ends at the first NUL of the text.
                        const std::string& content =
                            bridge_.getFileFromIndex(index).getFileSection(s->kind).getContent();
                        if (text != content.substr(0, content.find('\0')))
                            fail("section attribute " + name + " is not the section's text");
                    }
                    break;
                }
                case 3: {
                    const std::string name = pickName(in_, kStringSetNames);
                    const std::string value = in_.ConsumeRandomLengthString(24);
                    const bool passNull = in_.ConsumeIntegralInRange<int>(0, 15) == 0;
                    mustSucceed = validIndex && contains(kStringSetNames, name) && !passNull;
                    std::string before;
                    if (mustSucceed && name == "Group") before = bridge_.getStringAttribute(index, "Group");
                    bridge_.setAttribute(index, name, passNull ? nullptr : value.c_str());
                    if (passNull) fail("a null attribute value was accepted");
                    if (mustSucceed) checkStringSet(index, name, value.c_str(), before);
                    break;
                }
                case 4: {
                    const std::string name = pickName(in_, kStringListNames);
                    mustSucceed = validIndex && contains(kStringListNames, name);
                    bridge_.getStringArrayAttribute(index, name);
                    break;
                }
                case 5: {
                    const std::string name = pickName(in_, names_);
                    const bool passNull = in_.ConsumeIntegralInRange<int>(0, 15) == 0;
                    mustSucceed = validIndex && findSection(name) && !passNull;
                    boost::shared_ptr<VelCG::FileSectionFragment> fragment;
                    if (!passNull)
                        fragment = boost::make_shared<VelCG::StringFileSectionFragment>(
                            in_.ConsumeRandomLengthString(32));
                    bridge_.addSectionContent(index, name, fragment);
                    if (passNull) fail("a null fragment was accepted");
                    break;
                }
                case 6: {
                    const std::string builtin = pickName(in_, names_);
                    const std::string custom =
                        in_.ConsumeBool() ? "Custom" + std::to_string(in_.ConsumeIntegral<std::uint8_t>() % 4)
                                          : in_.ConsumeRandomLengthString(12);
                    bridge_.addCustomSection(index, builtin, custom);
                    if (validIndex) custom_[static_cast<std::size_t>(index)] = true;
                    break;
                }
                case 7: {
                    if (!validIndex) break;
                    // Content for a custom section, straight through the file.
                    const std::string custom =
                        "Custom" + std::to_string(in_.ConsumeIntegral<std::uint8_t>() % 4);
                    auto& contents = bridge_.getFileFromIndex(index).getCustomContent();
                    if (in_.ConsumeBool())
                        contents.addContentToSection(custom, in_.ConsumeRandomLengthString(16));
                    else
                        contents.setCustomTokenInUse(custom);
                    break;
                }
                case 8: {
                    const std::string name = pickName(in_, names_);
                    bridge_.appendMissingTokens(index, name);
                    break;
                }
                default: {
                    const std::string name = pickName(in_, names_);
                    write(index, name);
                    break;
                }
            }
        } catch (const vel::diag::Exception& e) {
            if (e.identifier().empty()) fail(std::string("diagnostic without identifier: ") + e.what());
            if (mustSucceed) fail("operation " + std::to_string(op) + " failed: " + e.what());
        } catch (const std::exception& e) {
            fail(std::string("non-diagnostic exception: ") + e.what());
        }
    }

private:
    void checkStringSet(std::int32_t index, const std::string& name, const char* value,
                        const std::string& before) {
        if (contains(kStringListNames, name)) {
            const auto& list = bridge_.getStringArrayAttribute(index, name);
            if (std::find(list.begin(), list.end(), std::string(value)) == list.end())
                fail("list attribute " + name + " does not hold the added value");
            return;
        }
        std::string expected = value;
        if (name == "Group" && (!before.empty() || expected.empty())) expected = before;
        if (bridge_.getStringAttribute(index, name) != expected)
            fail("string attribute " + name + " does not read back");
    }

    void write(std::int32_t index, const std::string& name) {
        const SectionName* s = findSection(name);
        const bool plain = index >= 0 && index < count_ && s && !custom_[static_cast<std::size_t>(index)];
        std::string before;
        if (plain) before = bridge_.getFileFromIndex(index).getFileSection(s->kind).getContent();
        const long from = std::ftell(stream_);
        bridge_.writeSection(index, name, stream_);
        if (!plain) return;
        const VelCG::VelCGFile& file = bridge_.getFileFromIndex(index);
        const std::string written = readBack(stream_, from);
        const std::string expected =
            file.hasSection(s->kind) ? file.getFileSection(s->kind).getContent() : "";
        if (written != expected) fail("written bytes of " + name + " differ from the section's text");
        if (expected != before) fail("writing " + name + " changed a section without custom content");
    }

    FuzzedDataProvider& in_;
    VelCG::VelCGFileRepository repository_;
    FileRepScrivBridge& bridge_;
    std::int32_t count_ = 0;
    std::FILE* stream_ = nullptr;
    const std::vector<std::string> names_ = allNames();
    // Files on which a custom section was declared.
    std::array<bool, 4> custom_{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    Run run(in);
    for (int steps = 0; steps < 64 && in.remaining_bytes() > 0; ++steps) run.step();
    return 0;
}
