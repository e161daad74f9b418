#include <string>
#include <vector>

#include "ClassBindings.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/HostTraits.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/FunctionsSection.hpp"
#include "velcg/IncludesSection.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGFileSectionKind.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

// Host value conversions of the generated-file classes. Only this file binds
// these types, so the specializations live beside their single use.
namespace korb {

// A section kind from scripts: its enumerator name as a character vector
// (unknown names answer BANNER_SECTION, see getSectionKindFromEnumName) or
// its numeric value.
template <>
struct HostTraits<VelCG::VelCGFileSectionKind> {
    static constexpr const char* typeName = kCharVector;
    static tuvArrayPtr toArray(VelCG::VelCGFileSectionKind kind) {
        return tuvArray::fromUtf8(VelCG::getSectionKindEnumName(kind));
    }
    static VelCG::VelCGFileSectionKind fromArray(const tuvArray& a) {
        if (a.classId() == tuvClass::Char) return VelCG::getSectionKindFromEnumName(a.toUtf8());
        return static_cast<VelCG::VelCGFileSectionKind>(
            detail::toInteger(a, INT32_MIN, INT32_MAX, "section kind"));
    }
};

// The repository's file list, delivered under its own host type name.
template <>
struct HostTraits<std::vector<VelCG::VelCGFile*>> {
    static constexpr const char* typeName = "VelCG.VelCGFile vector";
    static tuvArrayPtr toArray(const std::vector<VelCG::VelCGFile*>& files) {
        std::vector<vel::mi::HandleRef> refs;
        refs.reserve(files.size());
        for (const VelCG::VelCGFile* f : files) refs.push_back(f->makeRef());
        return tuvArray::objects(std::move(refs));
    }
};

} // namespace korb

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

void declareModuleFile(ClassInfo& c) {
    using F = VelCGModuleFile;
    c.superclass("VelCG.VelCGFile");
    c.method("getIncludesSection", method(&F::korb_getIncludesSection));
    c.method("getTypedefsSection", method(&F::korb_getTypedefsSection));
    c.method("getExternFunctionsSection", method(&F::korb_getExternFunctionsSection));
    c.method("getExternDataSection", method(&F::korb_getExternDataSection));
    c.method("getFunctionPrototypesSection", method(&F::korb_getFunctionPrototypesSection));
    c.method("getDeclarationsSection", method(&F::korb_getDeclarationsSection));
    c.method("getDefinesSection", method(&F::korb_getDefinesSection));
    c.method("getFunctionsSection", method(&F::korb_getFunctionsSection));
    c.method("getForwardDeclarationsSection", method(&F::korb_getForwardDeclarationsSection));
    c.method("getDocumentationSection", method(&F::korb_getDocumentationSection));
}

void declareDataTypesFile(ClassInfo& c) {
    using F = VelCGDataTypesFile;
    c.superclass("VelCG.VelCGFile");
    c.method("getIncludesSection", method(&F::korb_getIncludesSection));
    c.method("getTypedefsSection", method(&F::korb_getTypedefsSection));
    c.method("getDefinesSection", method(&F::korb_getDefinesSection));
}

void declareGenericFile(ClassInfo& c) {
    using F = VelCGGenericFile;
    c.superclass("VelCG.VelCGFile");
    c.method("getIncludesSection", method(&F::korb_getIncludesSection));
    c.method("getDefinesSection", method(&F::korb_getDefinesSection));
    c.method("getForwardDeclarationsSection", method(&F::korb_getForwardDeclarationsSection));
    c.method("getTypedefsSection", method(&F::korb_getTypedefsSection));
    c.method("getEnumsSection", method(&F::korb_getEnumsSection));
    c.method("getDefinitionsSection", method(&F::korb_getDefinitionsSection));
    c.method("getExternDataSection", method(&F::korb_getExternDataSection));
    c.method("getExternFunctionsSection", method(&F::korb_getExternFunctionsSection));
    c.method("getFunctionPrototypesSection", method(&F::korb_getFunctionPrototypesSection));
    c.method("getDeclarationsSection", method(&F::korb_getDeclarationsSection));
    c.method("getFunctionsSection", method(&F::korb_getFunctionsSection));
    c.method("getCompilerErrorsSection", method(&F::korb_getCompilerErrorsSection));
    c.method("getCompilerWarningsSection", method(&F::korb_getCompilerWarningsSection));
    c.method("getDocumentationSection", method(&F::korb_getDocumentationSection));
}

void declareFileRepository(ClassInfo& c) {
    using R = VelCGFileRepository;
    c.superclass(korb::kHeterogeneous);
    c.property("FileList", getter(&R::getFileList_korb));
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
    classes.push_back(ClassInfo::make("VelCGModuleFile", "File section object", declareModuleFile));
    classes.push_back(ClassInfo::make("VelCGDataTypesFile", "Data types file object", declareDataTypesFile));
    classes.push_back(ClassInfo::make("VelCGGenericFile", "Generic file object", declareGenericFile));
    classes.push_back(
        ClassInfo::make("VelCGFileRepository", "File Repository Object", declareFileRepository));
}

} // namespace VelCG::binding
