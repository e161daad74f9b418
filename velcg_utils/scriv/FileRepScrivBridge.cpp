#include "velcg/FileRepScrivBridge.hpp"

#include <cerrno>

#include "files/FilesDetail.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"

namespace VelCG {

namespace {
[[noreturn]] void unknownAttribute(const std::string& name, const char* kind) {
    vel::diag::throwError("VelCG:FileRepScrivBridge:UnknownAttribute", {name, kind});
}

[[noreturn]] void unknownSection(const std::string& name) {
    vel::diag::throwError("VelCG:FileRepScrivBridge:UnknownSection", {name});
}

void requireNonNull(const void* p, const char* what) {
    if (!p) vel::diag::throwError("VelCG:FileRepScrivBridge:NullArgument", {what});
}

// The includes section of a file. Every file kind has one; for a file
// without, the empty section stands in and the cast fails, so the include
// lists read as empty and additions are dropped like any other addition to
// a missing section.
IncludesSection* includesOf(VelCGFile& file) {
    return dynamic_cast<IncludesSection*>(&file.getFileSection(INCLUDES_SECTION));
}
const IncludesSection* includesOf(const VelCGFile& file) {
    return dynamic_cast<const IncludesSection*>(&file.getFileSection(INCLUDES_SECTION));
}
const std::vector<std::string> kNoIncludes;

// The file at fileIndex of the repository's live list: a bridge call must not
// cost more as the repository grows.
VelCGFile& fileAt(const std::vector<VelCGFile*>& files, std::int32_t fileIndex) {
    if (fileIndex < 0 || static_cast<std::size_t>(fileIndex) >= files.size())
        vel::diag::throwError("VelCG:FileRepScrivBridge:InvalidFileIndex",
                              {std::to_string(fileIndex), std::to_string(files.size())});
    return *files[static_cast<std::size_t>(fileIndex)];
}

// The handler a table holds for name; raises through fail when it holds none.
template <class Table, class Fail>
const typename Table::mapped_type& handlerFor(const Table& table, const std::string& name, Fail fail) {
    auto it = table.find(name);
    if (it == table.end()) fail(name);
    return it->second;
}
} // namespace

FileRepScrivBridge::FileRepScrivBridge(VelCGFileRepository& repository) : repository_(repository) {
    fillAttributeTables();
    fillSectionTables();
}

FileRepScrivBridge::~FileRepScrivBridge() = default;

void FileRepScrivBridge::fillAttributeTables() {
    // Boolean attributes.
    booleanSetters_["Filter"] = [](VelCGFile& f, bool v) { f.setFiltered(v); };
    booleanGetters_["Filter"] = [](const VelCGFile& f) { return f.getFiltered(); };
    // A file can be marked non-empty, never empty again.
    booleanSetters_["IsEmpty"] = [](VelCGFile& f, bool v) {
        if (!v) f.setIsNotEmpty();
    };
    booleanGetters_["IsEmpty"] = [](const VelCGFile& f) { return f.isEmpty(); };
    booleanSetters_["WrittenToDisk"] = [](VelCGFile& f, bool v) { f.setIsWrittenToDisk(v); };
    booleanGetters_["WrittenToDisk"] = [](const VelCGFile& f) { return f.isWrittenToDisk(); };
    booleanSetters_["Indent"] = [](VelCGFile& f, bool v) { f.setIndent(v); };
    booleanGetters_["Indent"] = [](const VelCGFile& f) { return f.getIndent(); };
    booleanSetters_["Shared"] = [](VelCGFile& f, bool v) { f.setIsShared(v); };
    booleanGetters_["Shared"] = [](const VelCGFile& f) { return f.isShared(); };
    booleanSetters_["SharedType"] = [](VelCGFile& f, bool v) { f.setSharedType(v); };
    booleanGetters_["SharedType"] = [](const VelCGFile& f) { return f.getSharedType(); };
    booleanSetters_["DeferredIncludeCoderTypes"] = [](VelCGFile& f, bool v) {
        f.setDeferredIncludeCoderTypes(v);
    };
    booleanGetters_["DeferredIncludeCoderTypes"] = [](const VelCGFile& f) {
        return f.getDeferredIncludeCoderTypes();
    };

    // String attributes that can be set.
    stringSetters_["BaseName"] = [](VelCGFile& f, const char* v) { f.setBaseName(v); };
    stringSetters_["Type"] = [](VelCGFile& f, const char* v) { f.setType(v); };
    stringSetters_["Creator"] = [](VelCGFile& f, const char* v) { f.setCreator(v); };
    stringSetters_["SystemsInFile"] = [](VelCGFile& f, const char* v) { f.addSystemToFile(v); };
    stringSetters_["RequiredIncludes"] = [](VelCGFile& f, const char* v) {
        if (IncludesSection* s = includesOf(f)) s->addRequiredInclude(v);
    };
    stringSetters_["UtilityIncludes"] = [](VelCGFile& f, const char* v) {
        if (IncludesSection* s = includesOf(f)) s->addUtilityInclude(v);
    };
    stringSetters_["CodeTemplate"] = [](VelCGFile& f, const char* v) { f.setCodeTemplate(v); };
    stringSetters_["OutputDirectory"] = [](VelCGFile& f, const char* v) { f.setOutputDirectory(v); };
    // The first group a file is given sticks.
    stringSetters_["Group"] = [](VelCGFile& f, const char* v) {
        if (f.getGroup().empty()) f.setGroup(v);
    };
    stringSetters_["DefinedMacro"] = [](VelCGFile& f, const char* v) { f.setDefinedMacro(v); };

    // String attributes that can be read (section names follow in
    // fillSectionTables).
    using Getter = const std::string& (VelCGFile::*)() const;
    const std::pair<const char*, Getter> stringGetters[] = {
        {"Name", &VelCGFile::getNameAscii},
        {"BaseName", &VelCGFile::getBaseName},
        {"NameWithoutExtension", &VelCGFile::getNameWithoutExtension},
        {"Type", &VelCGFile::getType},
        {"Creator", &VelCGFile::getCreator},
        {"CodeTemplate", &VelCGFile::getCodeTemplate},
        {"OutputDirectory", &VelCGFile::getOutputDirectory},
        {"Group", &VelCGFile::getGroup},
        {"DefinedMacro", &VelCGFile::getDefinedMacro},
    };
    for (const auto& [name, get] : stringGetters)
        stringGetters_[name] = [get = get](const VelCGFile& f) -> const std::string& { return (f.*get)(); };

    // String-array attributes.
    stringArrayGetters_["SystemsInFile"] = [](const VelCGFile& f) -> const std::vector<std::string>& {
        return f.getSystemsInFile();
    };
    stringArrayGetters_["RequiredIncludes"] = [](const VelCGFile& f) -> const std::vector<std::string>& {
        const IncludesSection* s = includesOf(f);
        return s ? s->getRequiredIncludes() : kNoIncludes;
    };
    stringArrayGetters_["UtilityIncludes"] = [](const VelCGFile& f) -> const std::vector<std::string>& {
        const IncludesSection* s = includesOf(f);
        return s ? s->getUtilityIncludes() : kNoIncludes;
    };
}

void FileRepScrivBridge::fillSectionTables() {
    for (int k = 0; k < kNumberOfSectionSlots; ++k) {
        const auto kind = static_cast<VelCGFileSectionKind>(k);
        if (kind == FORWARD_DECLS_SECTION || k == kNumberOfSectionSlots - 1) continue;
        const std::string name = getScrivSectionNameFromEnum(kind);
        stringGetters_[name] = [this, kind](const VelCGFile& f) -> const std::string& {
            return getFileSectionContent(f, kind);
        };
        customSectionAdders_[name] = [this, kind](VelCGFile& f, const char* customName) {
            addFileCustomSection(f, customName, kind);
        };
        sectionTokenAppenders_[name] = [this, kind](VelCGFile& f) { appendFileSectionTokens(f, kind); };
        sectionWriters_[name] = [this, kind](VelCGFile& f, std::FILE* stream) {
            writeFileSectionToDisk(f, stream, kind);
        };
        sectionContentAdders_[name] = [this, kind](VelCGFile& f,
                                                   boost::shared_ptr<FileSectionFragment>& fragment) {
            addFileSectionContent(f, fragment, kind);
        };
    }
    // Templates may also declare custom typedefs sections under "Types";
    // no other section operation knows that name.
    customSectionAdders_["Types"] = [this](VelCGFile& f, const char* customName) {
        addFileCustomSection(f, customName, TYPEDEFS_SECTION);
    };
}

VelCGFile& FileRepScrivBridge::getFileFromIndex(std::int32_t fileIndex) {
    return fileAt(repository_.getFileList(), fileIndex);
}

const VelCGFile& FileRepScrivBridge::getFileFromIndex(std::int32_t fileIndex) const {
    return fileAt(repository_.getFileList(), fileIndex);
}

bool FileRepScrivBridge::isBooleanAttribute(const std::string& name) const {
    return booleanGetters_.count(name) != 0;
}

bool FileRepScrivBridge::isStringAttribute(const std::string& name) const {
    return stringGetters_.count(name) != 0;
}

bool FileRepScrivBridge::isStringArrayAttribute(const std::string& name) const {
    return stringArrayGetters_.count(name) != 0;
}

bool FileRepScrivBridge::isFileSectionAttribute(const std::string& name) const {
    return sectionContentAdders_.count(name) != 0;
}

bool FileRepScrivBridge::getBooleanAttribute(std::int32_t fileIndex, const std::string& name) const {
    return getBooleanAttributeFromFile(getFileFromIndex(fileIndex), name);
}

const char* FileRepScrivBridge::getStringAttribute(std::int32_t fileIndex, const std::string& name) const {
    return getStringAttributeFromFile(getFileFromIndex(fileIndex), name);
}

const std::vector<std::string>& FileRepScrivBridge::getStringArrayAttribute(std::int32_t fileIndex,
                                                                            const std::string& name) const {
    return getStringArrayAttributeFromFile(getFileFromIndex(fileIndex), name);
}

void FileRepScrivBridge::setAttribute(std::int32_t fileIndex, const std::string& name, const char* value) {
    setAttributeForFile(getFileFromIndex(fileIndex), name, value);
}

void FileRepScrivBridge::setAttribute(std::int32_t fileIndex, const std::string& name, bool value) {
    setAttributeForFile(getFileFromIndex(fileIndex), name, value);
}

bool FileRepScrivBridge::getBooleanAttributeFromFile(const VelCGFile& file, const std::string& name) const {
    return handlerFor(booleanGetters_, name,
                      [](const std::string& n) { unknownAttribute(n, "boolean"); })(file);
}

const char* FileRepScrivBridge::getStringAttributeFromFile(const VelCGFile& file,
                                                           const std::string& name) const {
    return handlerFor(stringGetters_, name,
                      [](const std::string& n) { unknownAttribute(n, "readable string"); })(file)
        .c_str();
}

const std::vector<std::string>& FileRepScrivBridge::getStringArrayAttributeFromFile(
    const VelCGFile& file, const std::string& name) const {
    return handlerFor(stringArrayGetters_, name,
                      [](const std::string& n) { unknownAttribute(n, "string list"); })(file);
}

void FileRepScrivBridge::setAttributeForFile(VelCGFile& file, const std::string& name, const char* value) {
    const StringSetter& set = handlerFor(
        stringSetters_, name, [](const std::string& n) { unknownAttribute(n, "settable string"); });
    requireNonNull(value, "attribute value");
    set(file, value);
}

void FileRepScrivBridge::setAttributeForFile(VelCGFile& file, const std::string& name, bool value) {
    handlerFor(booleanSetters_, name, [](const std::string& n) { unknownAttribute(n, "boolean"); })(file,
                                                                                                    value);
}

void FileRepScrivBridge::addSectionContent(std::int32_t fileIndex, const std::string& sectionName,
                                           boost::shared_ptr<FileSectionFragment> fragment) {
    VelCGFile& file = getFileFromIndex(fileIndex);
    const SectionContentAdder& add = handlerFor(sectionContentAdders_, sectionName, unknownSection);
    requireNonNull(fragment.get(), "section fragment");
    add(file, fragment);
}

void FileRepScrivBridge::addCustomSection(std::int32_t fileIndex, const std::string& builtinSectionName,
                                          const std::string& customSectionName) {
    VelCGFile& file = getFileFromIndex(fileIndex);
    auto it = customSectionAdders_.find(builtinSectionName);
    if (it == customSectionAdders_.end())
        vel::diag::throwError("Brisk:codeGen:CustomContentInvalidBuiltin",
                              {customSectionName, builtinSectionName});
    it->second(file, customSectionName.c_str());
}

void FileRepScrivBridge::appendMissingTokens(std::int32_t fileIndex, const std::string& sectionName) {
    VelCGFile& file = getFileFromIndex(fileIndex);
    handlerFor(sectionTokenAppenders_, sectionName, unknownSection)(file);
}

void FileRepScrivBridge::writeSection(std::int32_t fileIndex, const std::string& sectionName,
                                      std::FILE* stream) {
    VelCGFile& file = getFileFromIndex(fileIndex);
    const SectionWriter& write = handlerFor(sectionWriters_, sectionName, unknownSection);
    requireNonNull(stream, "output stream");
    write(file, stream);
    // The stream keeps what it buffers until a flush: check that the section
    // reached the file while the file and section can still be named.
    errno = 0;
    if (std::fflush(stream) != 0 || std::ferror(stream))
        vel::diag::throwError("VelCG:FileRepScrivBridge:WriteFailed",
                              {file.getNameAscii(), sectionName, files_detail::systemErrorText()});
}

const std::string& FileRepScrivBridge::getFileSectionContent(const VelCGFile& file,
                                                             VelCGFileSectionKind kind) const {
    return file.getFileSection(kind).getContent();
}

void FileRepScrivBridge::addFileCustomSection(VelCGFile& file, const char* customSectionName,
                                              VelCGFileSectionKind kind) {
    file.getCustomContent().addCustomSection(std::string(customSectionName), kind);
}

void FileRepScrivBridge::appendFileSectionTokens(VelCGFile& file, VelCGFileSectionKind kind) {
    file.getCustomContent().appendMissingTokens(file.getFileSection(kind), kind);
}

void FileRepScrivBridge::writeFileSectionToDisk(VelCGFile& file, std::FILE* stream,
                                                VelCGFileSectionKind kind) {
    file.writeSectionToFile(kind, stream);
}

void FileRepScrivBridge::addFileSectionContent(VelCGFile& file,
                                               boost::shared_ptr<FileSectionFragment>& fragment,
                                               VelCGFileSectionKind kind) {
    file.getFileSection(kind).addFragment(std::move(fragment));
}

} // namespace VelCG
