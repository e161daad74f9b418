#include <cassert>
#include <string>
#include <vector>

#include "ClassBindings.hpp"
#include "files/FileKindSections.hpp"
#include "korb/ClassInfo.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/FunctionsSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGFileSectionKind.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

namespace VelCG::binding {

namespace {

using korb::ClassInfo;
using korb::getter;
using korb::method;
using korb::setter;

void declareFileSection(ClassInfo& c) {
    c.superclass(korb::kHeterogeneous);
    c.method("isEmpty", method(&FileSection::isEmpty));
    c.method("getContent", method(&FileSection::getContent));
    c.method("addContent", method(&FileSection::addContent));
}

void declareFunctionsSection(ClassInfo& c) {
    c.superclass("VelCG.FileSection");
    c.method("addFunction", method(&FunctionsSection::addFunction));
    c.method("getNumberOfFunctions", method(&FunctionsSection::getNumberOfFunctions));
    c.method("getFunction", method(&FunctionsSection::korb_getFunction));
    c.method("getFunctionName", method(&FunctionsSection::korb_getFunctionName));
}

void declareIncludesSection(ClassInfo& c) {
    c.superclass("VelCG.FileSection");
    c.property("RequiredIncludes", getter(&IncludesSection::getRequiredIncludes),
               setter(&IncludesSection::setRequiredIncludes));
    c.property("UtilityIncludes", getter(&IncludesSection::getUtilityIncludes),
               setter(&IncludesSection::setUtilityIncludes));
    c.method("addInclude", method(&IncludesSection::addInclude));
}

void declareVelCGFile(ClassInfo& c) {
    c.superclass(korb::kHeterogeneous);
    c.property("Name", getter(&VelCGFile::getName));
    c.property("BaseName", getter(&VelCGFile::getBaseName));
    c.property("NameWithoutExtension", getter(&VelCGFile::getNameWithoutExtension));
    c.property("Type", getter(&VelCGFile::getType), setter(&VelCGFile::setType));
    c.property("Creator", getter(&VelCGFile::getCreator), setter(&VelCGFile::setCreator));
    c.property("SystemsInFile", getter(&VelCGFile::getSystemsInFile), setter(&VelCGFile::setSystemsInFile));
    c.property("Filtered", getter(&VelCGFile::getFiltered), setter(&VelCGFile::setFiltered));
    c.property("IsEmpty", getter(&VelCGFile::isEmpty));
    c.property("WrittenToDisk", getter(&VelCGFile::isWrittenToDisk), setter(&VelCGFile::setIsWrittenToDisk));
    c.property("Indent", getter(&VelCGFile::getIndent), setter(&VelCGFile::setIndent));
    c.property("Shared", getter(&VelCGFile::isShared), setter(&VelCGFile::setIsShared));
    c.property("SharedType", getter(&VelCGFile::getSharedType), setter(&VelCGFile::setSharedType));
    c.property("DeferredIncludeCoderTypes", getter(&VelCGFile::getDeferredIncludeCoderTypes),
               setter(&VelCGFile::setDeferredIncludeCoderTypes));
    c.property("CodeTemplate", getter(&VelCGFile::getCodeTemplate), setter(&VelCGFile::setCodeTemplate));
    c.property("OutputDirectory", getter(&VelCGFile::getOutputDirectory),
               setter(&VelCGFile::setOutputDirectory));
    c.property("Group", getter(&VelCGFile::getGroup), setter(&VelCGFile::setGroup));
    // Read-only to scripts although the native setter exists.
    c.property("DefinedMacro", getter(&VelCGFile::getDefinedMacro));
    c.method("getFileSection", method(&VelCGFile::korb_getFileSection));
    c.method("hasSection", method(&VelCGFile::hasSection));
}

// A file kind's class: the named section accessors that the table of the
// file kinds' sections gives it, in the table's order.
void declareFileKind(ClassInfo& c, files_detail::FileKind file) {
    c.superclass("VelCG.VelCGFile");
    for (int position = 1; position <= files_detail::numberOfAccessors(file); ++position) {
        const int row = files_detail::rowOfAccessor(file, position);
        assert(row >= 0 && "the section table numbers a file kind's accessors without gaps");
        const files_detail::SectionRow& section = files_detail::kSectionRows[row];
        const VelCGFileSectionKind kind = section.kind;
        c.method(section.accessor, korb::methodFn<VelCGFile, FileSection*>(
                                       [kind](VelCGFile& f) { return f.korb_getFileSection(kind); }));
    }
}

void declareFileRepository(ClassInfo& c) {
    using R = VelCGFileRepository;
    c.superclass(korb::kHeterogeneous);
    c.property("FileList", getter(&R::getFileList_korb)).holds("VelCG.VelCGFile");
    c.method("createDataTypesFile",
             korb::methodFn<R, VelCGFile*, std::string>(
                 [](R& r, const std::string& name) -> VelCGFile* { return &r.createDataTypesFile(name); }));
    c.method("createGenericFile",
             korb::methodFn<R, VelCGFile*, std::string>(
                 [](R& r, const std::string& name) -> VelCGFile* { return &r.createGenericFile(name); }));
    c.method("findFileByName", method(&R::findFileByName));
}

} // namespace

void appendFileClasses(ClassList& classes) {
    classes.push_back(ClassInfo::make("FileSection", "Base file section", declareFileSection));
    classes.push_back(ClassInfo::make("FunctionsSection", "FunctionsSection", declareFunctionsSection));
    classes.push_back(ClassInfo::make("IncludesSection", "Includes section", declareIncludesSection));
    classes.push_back(
        ClassInfo::make("VelCGFile", "Basic File Object", declareVelCGFile, /*isAbstract=*/true));
    const auto fileKind = [](files_detail::FileKind file) {
        return [file](ClassInfo& c) { declareFileKind(c, file); };
    };
    classes.push_back(
        ClassInfo::make("VelCGModuleFile", "File section object", fileKind(files_detail::FileKind::Module)));
    classes.push_back(ClassInfo::make("VelCGDataTypesFile", "Data types file object",
                                      fileKind(files_detail::FileKind::DataTypes)));
    classes.push_back(ClassInfo::make("VelCGGenericFile", "Generic file object",
                                      fileKind(files_detail::FileKind::Generic)));
    classes.push_back(
        ClassInfo::make("VelCGFileRepository", "File Repository Object", declareFileRepository));
}

} // namespace VelCG::binding
