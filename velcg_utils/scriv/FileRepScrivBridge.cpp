#include "velcg/FileRepScrivBridge.hpp"

#include <algorithm>
#include <cerrno>

#include "Messages.hpp"
#include "NearNames.hpp"
#include "brisk/Messages.hpp"
#include "files/FilesDetail.hpp"
#include "scriv/BridgeAttributes.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/WholeFile.hpp"

namespace VelCG {

namespace {
using reference::ValueType;
using scriv_detail::AttributeRow;

// The use an operation makes of an attribute.
enum class Use { ReadBoolean, ReadString, ReadStringList, SetBoolean, SetString };

ValueType typeOf(Use use) {
    switch (use) {
        case Use::ReadBoolean:
        case Use::SetBoolean:
            return ValueType::Boolean;
        case Use::ReadString:
        case Use::SetString:
            return ValueType::String;
        case Use::ReadStringList:
            break;
    }
    return ValueType::StringList;
}

bool isSet(Use use) { return use == Use::SetBoolean || use == Use::SetString; }

const char* readerOf(ValueType type) {
    return type == ValueType::Boolean      ? "getBooleanAttribute"
           : type == ValueType::StringList ? "getStringArrayAttribute"
                                           : "getStringAttribute";
}

const char* valueOf(ValueType type) { return type == ValueType::Boolean ? "true or false" : "a string"; }

bool isSectionName(const std::string& name) {
    const auto& names = sectionNamesInFileOrder();
    return std::find(names.begin(), names.end(), name) != names.end();
}

const AttributeRow* findRow(const std::string& name) {
    for (const AttributeRow& row : scriv_detail::attributeRows())
        if (name == row.name) return &row;
    return nullptr;
}

std::string unquotedList(const std::vector<std::string>& names) {
    return names_detail::quotedList(names, 0, "and");
}

// Raises the diagnostic that says why the operation cannot use the name:
// a name of another type, a read-only one, a section, or an unknown name
// with the names it may have meant.
[[noreturn]] void refuseAttribute(const std::string& name, Use use) {
    namespace ids = messages::FileRepScrivBridge;
    const ValueType wanted = typeOf(use);
    const AttributeRow* row = findRow(name);
    if (isSet(use) && isSectionName(name)) vel::diag::throwError(ids::SectionNotSettable, {name});
    if (isSet(use) && row && row->setAs == ValueType::None)
        vel::diag::throwError(ids::ReadOnlyAttribute, {name, readerOf(row->readAs)});
    if (isSet(use) && row)
        vel::diag::throwError(ids::WrongValueType, {name, valueOf(row->setAs), valueOf(wanted)});
    const ValueType actual = row ? row->readAs : isSectionName(name) ? ValueType::String : ValueType::None;
    if (actual != ValueType::None)
        vel::diag::throwError(ids::WrongAttributeType, {name, reference::valueTypeName(actual),
                                                        reference::valueTypeName(wanted), readerOf(actual)});
    std::vector<std::string> candidates;
    for (const AttributeRow& r : scriv_detail::attributeRows())
        if ((isSet(use) ? r.setAs : r.readAs) == wanted) candidates.push_back(r.name);
    std::vector<std::string> listed = candidates;
    if (use == Use::ReadString) {
        listed.push_back("the section names");
        candidates.insert(candidates.end(), sectionNamesInFileOrder().begin(),
                          sectionNamesInFileOrder().end());
    }
    const char* kind = use == Use::ReadString         ? "readable string"
                       : use == Use::SetString        ? "settable string"
                       : wanted == ValueType::Boolean ? "boolean"
                                                      : "string list";
    vel::diag::throwError(
        ids::UnknownAttribute,
        {name, kind, names_detail::didYouMean(name, candidates, '\''), unquotedList(listed)});
}

[[noreturn]] void unknownSection(const std::string& name) {
    vel::diag::throwError(messages::FileRepScrivBridge::UnknownSection,
                          {name, names_detail::didYouMean(name, sectionNamesInFileOrder(), '\''),
                           unquotedList(sectionNamesInFileOrder())});
}

void requireNonNull(const void* p, const char* what) {
    if (!p) vel::diag::throwError(messages::FileRepScrivBridge::NullArgument, {what});
}

// The file at fileIndex of the repository's live list: a bridge call must not
// cost more as the repository grows.
VelCGFile& fileAt(const std::vector<VelCGFile*>& files, std::int32_t fileIndex) {
    if (fileIndex < 0 || static_cast<std::size_t>(fileIndex) >= files.size())
        vel::diag::throwError(messages::FileRepScrivBridge::InvalidFileIndex,
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
    for (const AttributeRow& row : scriv_detail::attributeRows()) {
        switch (row.readAs) {
            case ValueType::Boolean:
                booleanGetters_[row.name] = row.getBoolean;
                break;
            case ValueType::String:
                stringGetters_[row.name] = row.getString;
                break;
            case ValueType::StringList:
                stringArrayGetters_[row.name] = row.getStringList;
                break;
            case ValueType::None:
                break;
        }
        if (row.setAs == ValueType::Boolean) booleanSetters_[row.name] = row.setBoolean;
        if (row.setAs == ValueType::String) stringSetters_[row.name] = row.setString;
    }
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
                      [](const std::string& n) { refuseAttribute(n, Use::ReadBoolean); })(file);
}

const char* FileRepScrivBridge::getStringAttributeFromFile(const VelCGFile& file,
                                                           const std::string& name) const {
    return handlerFor(stringGetters_, name,
                      [](const std::string& n) { refuseAttribute(n, Use::ReadString); })(file)
        .c_str();
}

const std::vector<std::string>& FileRepScrivBridge::getStringArrayAttributeFromFile(
    const VelCGFile& file, const std::string& name) const {
    return handlerFor(stringArrayGetters_, name,
                      [](const std::string& n) { refuseAttribute(n, Use::ReadStringList); })(file);
}

void FileRepScrivBridge::setAttributeForFile(VelCGFile& file, const std::string& name, const char* value) {
    const StringSetter& set =
        handlerFor(stringSetters_, name, [](const std::string& n) { refuseAttribute(n, Use::SetString); });
    requireNonNull(value, "attribute value");
    set(file, value);
}

void FileRepScrivBridge::setAttributeForFile(VelCGFile& file, const std::string& name, bool value) {
    handlerFor(booleanSetters_, name, [](const std::string& n) { refuseAttribute(n, Use::SetBoolean); })(
        file, value);
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
    if (it == customSectionAdders_.end()) {
        // The host's message names the built-in section; the names it could
        // have been come as a warning of their own.
        std::vector<std::string> builtins = sectionNamesInFileOrder();
        builtins.push_back("Types");
        vel::diag::warn(messages::FileRepScrivBridge::InvalidBuiltinSection,
                        {builtinSectionName, names_detail::didYouMean(builtinSectionName, builtins, '\''),
                         unquotedList(builtins)});
        vel::diag::throwError(brisk::messages::CustomContentInvalidBuiltin,
                              {customSectionName, builtinSectionName});
    }
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
        vel::diag::throwError(messages::FileRepScrivBridge::WriteFailed,
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
