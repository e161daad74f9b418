#include "scriv/BridgeAttributes.hpp"

#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGFile.hpp"

namespace VelCG::scriv_detail {

namespace {

// The includes section of a file. Every file kind has one; for a file
// without, the stand-in section answers and the cast fails, so the include
// lists read as empty and additions are dropped like any other addition to
// a missing section.
IncludesSection* includesOf(VelCGFile& file) {
    return dynamic_cast<IncludesSection*>(&file.getFileSection(INCLUDES_SECTION));
}
const IncludesSection* includesOf(const VelCGFile& file) {
    return dynamic_cast<const IncludesSection*>(&file.getFileSection(INCLUDES_SECTION));
}
const std::vector<std::string> kNoIncludes;

AttributeRow stringRow(const char* name, const std::string& (*get)(const VelCGFile&),
                       void (*set)(VelCGFile&, const char*), const char* description) {
    return {name,    ValueType::String, set ? ValueType::String : ValueType::None, nullptr, nullptr, get, set,
            nullptr, description};
}

AttributeRow listRow(const char* name, const std::vector<std::string>& (*get)(const VelCGFile&),
                     void (*add)(VelCGFile&, const char*), const char* description) {
    return {name, ValueType::StringList, ValueType::String, nullptr, nullptr, nullptr, add, get, description};
}

AttributeRow booleanRow(const char* name, bool (*get)(const VelCGFile&), void (*set)(VelCGFile&, bool),
                        const char* description) {
    return {name, ValueType::Boolean, ValueType::Boolean, get, set, nullptr, nullptr, nullptr, description};
}

} // namespace

const std::vector<AttributeRow>& attributeRows() {
    using F = VelCGFile;
    static const std::vector<AttributeRow> rows = {
        stringRow(
            "Name", [](const F& f) -> const std::string& { return f.getNameAscii(); }, nullptr,
            "The file's name as it was created, extension and directories included."),
        stringRow(
            "BaseName", [](const F& f) -> const std::string& { return f.getBaseName(); },
            [](F& f, const char* v) { f.setBaseName(v); },
            "The name without directories and without its last extension, unless set otherwise."),
        stringRow(
            "NameWithoutExtension",
            [](const F& f) -> const std::string& { return f.getNameWithoutExtension(); }, nullptr,
            "The whole name, directories kept, up to its last \".\"."),
        stringRow(
            "Type", [](const F& f) -> const std::string& { return f.getType(); },
            [](F& f, const char* v) { f.setType(v); }, "Free text, such as header or source."),
        stringRow(
            "Creator", [](const F& f) -> const std::string& { return f.getCreator(); },
            [](F& f, const char* v) { f.setCreator(v); }, "Free text naming who created the file."),
        stringRow(
            "CodeTemplate", [](const F& f) -> const std::string& { return f.getCodeTemplate(); },
            [](F& f, const char* v) { f.setCodeTemplate(v); }, "The code template that lays the file out."),
        stringRow(
            "OutputDirectory", [](const F& f) -> const std::string& { return f.getOutputDirectory(); },
            [](F& f, const char* v) { f.setOutputDirectory(v); }, "The directory the file is meant for."),
        // The first group a file is given sticks.
        stringRow(
            "Group", [](const F& f) -> const std::string& { return f.getGroup(); },
            [](F& f, const char* v) {
                if (f.getGroup().empty()) f.setGroup(v);
            },
            "The file's group; only the first setting takes, later ones are ignored."),
        stringRow(
            "DefinedMacro", [](const F& f) -> const std::string& { return f.getDefinedMacro(); },
            [](F& f, const char* v) { f.setDefinedMacro(v); },
            "The macro the file defines, such as its guard."),
        listRow(
            "SystemsInFile",
            [](const F& f) -> const std::vector<std::string>& { return f.getSystemsInFile(); },
            [](F& f, const char* v) { f.addSystemToFile(v); },
            "The systems whose code the file holds; setting adds one name unless it is listed already."),
        listRow(
            "RequiredIncludes",
            [](const F& f) -> const std::vector<std::string>& {
                const IncludesSection* s = includesOf(f);
                return s ? s->getRequiredIncludes() : kNoIncludes;
            },
            [](F& f, const char* v) {
                if (IncludesSection* s = includesOf(f)) s->addRequiredInclude(v);
            },
            "Headers the Includes section includes unless its text already does (`<name>` for a system "
            "header, a bare name for one in double quotes); setting adds one."),
        listRow(
            "UtilityIncludes",
            [](const F& f) -> const std::vector<std::string>& {
                const IncludesSection* s = includesOf(f);
                return s ? s->getUtilityIncludes() : kNoIncludes;
            },
            [](F& f, const char* v) {
                if (IncludesSection* s = includesOf(f)) s->addUtilityInclude(v);
            },
            "Utility headers, included after the required ones; setting adds one."),
        booleanRow(
            "Filter", [](const F& f) { return f.getFiltered(); }, [](F& f, bool v) { f.setFiltered(v); },
            "True leaves the file unwritten."),
        // A file can be marked non-empty, never empty again.
        booleanRow(
            "IsEmpty", [](const F& f) { return f.isEmpty(); },
            [](F& f, bool v) {
                if (!v) f.setIsNotEmpty();
            },
            "Whether no section holds text; setting false marks the file non-empty for good, setting true "
            "does nothing."),
        booleanRow(
            "WrittenToDisk", [](const F& f) { return f.isWrittenToDisk(); },
            [](F& f, bool v) { f.setIsWrittenToDisk(v); },
            "Whether the file has been written; a template that writes a file itself sets it."),
        booleanRow(
            "Indent", [](const F& f) { return f.getIndent(); }, [](F& f, bool v) { f.setIndent(v); },
            "Whether the file is to be indented."),
        booleanRow(
            "Shared", [](const F& f) { return f.isShared(); }, [](F& f, bool v) { f.setIsShared(v); },
            "Whether the file is shared between models."),
        booleanRow(
            "SharedType", [](const F& f) { return f.getSharedType(); },
            [](F& f, bool v) { f.setSharedType(v); }, "Whether the file holds a shared type."),
        booleanRow(
            "DeferredIncludeCoderTypes", [](const F& f) { return f.getDeferredIncludeCoderTypes(); },
            [](F& f, bool v) { f.setDeferredIncludeCoderTypes(v); },
            "Whether the include of the coder types is deferred."),
    };
    return rows;
}

} // namespace VelCG::scriv_detail
