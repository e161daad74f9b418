#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>

#include "velcg/Export.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace VelCG {

class FileSectionFragment;
class VelCGFile;
class VelCGFileRepository;

// The name-based interface through which Scriv scripts work on the files of
// one repository: a file is addressed by its index in the repository's file
// list (from 0), an attribute or a section by its name (case-sensitive).
//
// The attributes are the rows of the library's attribute table
// (scriv/BridgeAttributes.cpp; listed in docs/templates.md): booleans, read
// and set; strings, read and, except "Name" and "NameWithoutExtension", set;
// string lists ("SystemsInFile", "RequiredIncludes", "UtilityIncludes"), read
// as lists and set one string at a time. Every section name also reads as a
// string attribute (the section's current text).
//
// Section names are the Scriv section names of the kinds 0..21 except
// FORWARD_DECLS_SECTION ("Banner" ... "UserBottom"). For declaring custom
// sections only, "Types" also names the typedefs section.
//
// Every operation runs in time independent of the number of files.
//
// Diagnostics (catalogue "VelCG:FileRepScrivBridge" unless noted):
//   "VelCG:FileRepScrivBridge:InvalidFileIndex"  fileIndex < 0 or >= number of
//                                                files (arguments: index, count)
//   "VelCG:FileRepScrivBridge:UnknownAttribute"  name in no table of the operation's
//                                                kind (name, kind of attribute, the
//                                                near names as " (did you mean ...)"
//                                                or "", the names of that kind)
//   "VelCG:FileRepScrivBridge:ReadOnlyAttribute" a set of a read-only attribute
//                                                (name, the operation that reads it)
//   "VelCG:FileRepScrivBridge:SectionNotSettable" a set of a section name (name)
//   "VelCG:FileRepScrivBridge:WrongValueType"    a set with a value of the other
//                                                type (name, value taken, value given)
//   "VelCG:FileRepScrivBridge:WrongAttributeType" a read of an attribute of another
//                                                type (name, its type, the type asked
//                                                for, the operation that reads it)
//   "VelCG:FileRepScrivBridge:UnknownSection"    section name unknown to the
//                                                operation (name, near names as for
//                                                UnknownAttribute, the section names)
//   "VelCG:FileRepScrivBridge:NullArgument"      null value, fragment or stream
//                                                (argument's name)
//   "VelCG:FileRepScrivBridge:WriteFailed"       the stream refused a written
//                                                section when flushed (file name,
//                                                section name, system's reason)
//   "Brisk:codeGen:CustomContentInvalidBuiltin"  addCustomSection with an unknown
//                                                built-in name (custom name, built-in name),
//                                                after the warning
//                                                "VelCG:FileRepScrivBridge:InvalidBuiltinSection"
//                                                (built-in name, near names, the names
//                                                that may be given)
// Errors of the files' custom contents pass through unchanged.
class VELCG_API FileRepScrivBridge {
public:
    explicit FileRepScrivBridge(VelCGFileRepository& repository);
    FileRepScrivBridge(const FileRepScrivBridge&) = delete;
    FileRepScrivBridge& operator=(const FileRepScrivBridge&) = delete;
    virtual ~FileRepScrivBridge();

    // The file at fileIndex; through a const bridge, only to read.
    VelCGFile& getFileFromIndex(std::int32_t fileIndex);
    const VelCGFile& getFileFromIndex(std::int32_t fileIndex) const;

    bool isBooleanAttribute(const std::string& name) const;
    // True for every section name too.
    bool isStringAttribute(const std::string& name) const;
    bool isStringArrayAttribute(const std::string& name) const;
    bool isFileSectionAttribute(const std::string& name) const;

    bool getBooleanAttribute(std::int32_t fileIndex, const std::string& name) const;
    // Valid while the file lives and the attribute (or section) is unchanged.
    const char* getStringAttribute(std::int32_t fileIndex, const std::string& name) const;
    const std::vector<std::string>& getStringArrayAttribute(std::int32_t fileIndex,
                                                            const std::string& name) const;
    void setAttribute(std::int32_t fileIndex, const std::string& name, const char* value);
    void setAttribute(std::int32_t fileIndex, const std::string& name, bool value);

    // Appends fragment (shared, not copied) to the named section.
    void addSectionContent(std::int32_t fileIndex, const std::string& sectionName,
                           boost::shared_ptr<FileSectionFragment> fragment);
    // Declares a custom section tied to the named built-in section.
    void addCustomSection(std::int32_t fileIndex, const std::string& builtinSectionName,
                          const std::string& customSectionName);
    // Appends the custom sections the template did not place to the section.
    void appendMissingTokens(std::int32_t fileIndex, const std::string& sectionName);
    // Writes the named section of the file to an open stream; the caller
    // opens and closes it. Not const: writing first places the custom
    // sections the template declared but never placed, and marks them
    // retrieved (see VelCGFile::writeSectionToFile). Flushes the stream
    // afterwards, so that a full disk or a file size limit is reported here
    // rather than at the caller's fclose; a stream in an error state raises
    // "VelCG:FileRepScrivBridge:WriteFailed" and a write the stream took
    // short "VelCG:FileSection:WriteFailed", both with the system's reason.
    void writeSection(std::int32_t fileIndex, const std::string& sectionName, std::FILE* stream);

private:
    using BooleanSetter = boost::function<void(VelCGFile&, bool)>;
    using BooleanGetter = boost::function<bool(const VelCGFile&)>;
    using StringSetter = boost::function<void(VelCGFile&, const char*)>;
    using StringGetter = boost::function<const std::string&(const VelCGFile&)>;
    using StringArrayGetter = boost::function<const std::vector<std::string>&(const VelCGFile&)>;
    using SectionWriter = boost::function<void(VelCGFile&, std::FILE*)>;
    // Takes the fragment over from the caller's pointer.
    using SectionContentAdder = boost::function<void(VelCGFile&, boost::shared_ptr<FileSectionFragment>&)>;
    using CustomSectionAdder = boost::function<void(VelCGFile&, const char*)>;
    using SectionTokenAppender = boost::function<void(VelCGFile&)>;

    void fillAttributeTables();
    void fillSectionTables();

    bool getBooleanAttributeFromFile(const VelCGFile& file, const std::string& name) const;
    const char* getStringAttributeFromFile(const VelCGFile& file, const std::string& name) const;
    const std::vector<std::string>& getStringArrayAttributeFromFile(const VelCGFile& file,
                                                                    const std::string& name) const;
    void setAttributeForFile(VelCGFile& file, const std::string& name, const char* value);
    void setAttributeForFile(VelCGFile& file, const std::string& name, bool value);

    // Section handlers, bound per kind.
    const std::string& getFileSectionContent(const VelCGFile& file, VelCGFileSectionKind kind) const;
    void addFileCustomSection(VelCGFile& file, const char* customSectionName, VelCGFileSectionKind kind);
    void appendFileSectionTokens(VelCGFile& file, VelCGFileSectionKind kind);
    void writeFileSectionToDisk(VelCGFile& file, std::FILE* stream, VelCGFileSectionKind kind);
    void addFileSectionContent(VelCGFile& file, boost::shared_ptr<FileSectionFragment>& fragment,
                               VelCGFileSectionKind kind);

    VelCGFileRepository& repository_;
    boost::unordered_map<std::string, BooleanSetter> booleanSetters_;
    boost::unordered_map<std::string, BooleanGetter> booleanGetters_;
    boost::unordered_map<std::string, StringSetter> stringSetters_;
    boost::unordered_map<std::string, StringGetter> stringGetters_;
    boost::unordered_map<std::string, StringArrayGetter> stringArrayGetters_;
    boost::unordered_map<std::string, SectionWriter> sectionWriters_;
    boost::unordered_map<std::string, SectionContentAdder> sectionContentAdders_;
    boost::unordered_map<std::string, CustomSectionAdder> customSectionAdders_;
    boost::unordered_map<std::string, SectionTokenAppender> sectionTokenAppenders_;
};

} // namespace VelCG
