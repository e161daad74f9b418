#include <gtest/gtest.h>
#include <string>

#include "DiagnosticTesting.hpp"
#include "korb/Binders.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

class FileClassBindingsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { PlexoInitialize_velcg(); }

    tuvArrayPtr call(vel::mi::Handle& object, const std::string& name, std::vector<tuvArrayPtr> args = {}) {
        return client.callMethod(object.makeRef(), name, args);
    }
    // The single object a host array of handles holds.
    template <class T>
    static T* objectIn(const tuvArrayPtr& a) {
        return a->isEmpty() ? nullptr : dynamic_cast<T*>(a->handles().at(0).get());
    }
    static tuvArrayPtr str(const std::string& s) { return tuvArray::fromUtf8(s); }

    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
};

} // namespace

TEST_F(FileClassBindingsTest, DeclaresTheMembersOfEveryFileClassInOrder) {
    std::string out;
    for (const char* cls :
         {"FileSection", "FunctionsSection", "IncludesSection", "VelCGFile", "VelCGModuleFile",
          "VelCGDataTypesFile", "VelCGGenericFile", "VelCGFileRepository"}) {
        const vel::mi::HandleClass* c = client.findClass(std::string("VelCG.") + cls);
        ASSERT_NE(nullptr, c) << cls;
        out += cls;
        for (const auto& p : c->getProperties())
            out += " " + p.name + ":" + p.getter->hostTypeName() + (p.isReadOnly() ? "(ro)" : "");
        for (const auto& m : c->getMethods()) out += " " + m.name + "/" + std::to_string(m.binder->arity());
        out += "\n";
    }
    EXPECT_EQ(
        "FileSection isEmpty/0 getContent/0 addContent/1\n"
        "FunctionsSection addFunction/2 getNumberOfFunctions/0 getFunction/1 getFunctionName/1\n"
        "IncludesSection RequiredIncludes:cell UtilityIncludes:cell addInclude/2\n"
        "VelCGFile Name:char(ro) BaseName:char(ro) NameWithoutExtension:char(ro) Type:char Creator:char "
        "SystemsInFile:cell Filtered:logical scalar IsEmpty:logical scalar(ro) WrittenToDisk:logical scalar "
        "Indent:logical scalar Shared:logical scalar SharedType:logical scalar "
        "DeferredIncludeCoderTypes:logical scalar CodeTemplate:char OutputDirectory:char Group:char "
        "DefinedMacro:char(ro) getFileSection/1 hasSection/1\n"
        "VelCGModuleFile getIncludesSection/0 getTypedefsSection/0 getExternFunctionsSection/0 "
        "getExternDataSection/0 getFunctionPrototypesSection/0 getDeclarationsSection/0 getDefinesSection/0 "
        "getFunctionsSection/0 getForwardDeclarationsSection/0 getDocumentationSection/0\n"
        "VelCGDataTypesFile getIncludesSection/0 getTypedefsSection/0 getDefinesSection/0\n"
        "VelCGGenericFile getIncludesSection/0 getDefinesSection/0 getForwardDeclarationsSection/0 "
        "getTypedefsSection/0 getEnumsSection/0 getDefinitionsSection/0 getExternDataSection/0 "
        "getExternFunctionsSection/0 getFunctionPrototypesSection/0 getDeclarationsSection/0 "
        "getFunctionsSection/0 getCompilerErrorsSection/0 getCompilerWarningsSection/0 "
        "getDocumentationSection/0\n"
        "VelCGFileRepository FileList:VelCG.VelCGFile vector(ro) createDataTypesFile/1 createGenericFile/1 "
        "findFileByName/1\n",
        out);
}

TEST_F(FileClassBindingsTest, RepositoryCreatesListsAndFindsFilesByName) {
    VelCGFileRepository repo;
    VelCGModuleFile& module = repo.createModuleSourceFile("m.c", {1});
    auto* generic = objectIn<VelCGGenericFile>(call(repo, "createGenericFile", {str("g.txt")}));
    auto* types = objectIn<VelCGFile>(call(repo, "createDataTypesFile", {str("t.h")}));
    ASSERT_NE(nullptr, generic);
    ASSERT_NE(nullptr, types);
    EXPECT_STREQ("VelCG.VelCGDataTypesFile", types->getFullyQualifiedKorbTypeName());
    EXPECT_EQ(generic, objectIn<VelCGFile>(call(repo, "findFileByName", {str("g.txt")})));
    EXPECT_TRUE(call(repo, "findFileByName", {str("G.txt")})->isEmpty());

    korb::Value list = client.getPropertyValue(repo.makeRef(), "FileList");
    EXPECT_EQ("VelCG.VelCGFile vector", list.hostType);
    ASSERT_EQ(3u, list.data->numel());
    EXPECT_EQ(&module, list.data->handles()[0].get());
    EXPECT_EQ(types, list.data->handles()[2].get());
    EXPECT_EQ("Korb:ReadOnlyProperty",
              diagnosticOf([&] { client.setProperty(repo.makeRef(), "FileList", *list.data); }));
}

TEST_F(FileClassBindingsTest, FilePropertiesReadAndWriteByName) {
    VelCGGenericFile file("dir/out.c");
    auto ref = file.makeRef();
    for (const auto& [name, value] :
         {std::pair{"Type", "source"}, std::pair{"Creator", "me"}, std::pair{"CodeTemplate", "t.tmpl"},
          std::pair{"OutputDirectory", "build"}, std::pair{"Group", "g"}})
        client.setProperty(ref, name, *str(value));
    auto systems = tuvArray::cell(1, 2);
    systems->setCell(0, str("s1"));
    systems->setCell(1, str("s1"));
    client.setProperty(ref, "SystemsInFile", *systems);
    file.setDefinedMacro("OUT_H");

    std::string got;
    for (const char* p : {"Name", "BaseName", "NameWithoutExtension", "Type", "Creator", "CodeTemplate",
                          "OutputDirectory", "Group", "DefinedMacro"})
        got += client.getProperty(ref, p)->toUtf8() + ";";
    auto sys = client.getProperty(ref, "SystemsInFile");
    got += sys->getCell(0)->toUtf8() + "," + sys->getCell(1)->toUtf8() + ";";
    // Each writable flag set in turn, all read back after each: a mis-bound one shows.
    const char* flags[] = {"Filtered", "WrittenToDisk", "Indent",
                           "Shared",   "SharedType",    "DeferredIncludeCoderTypes"};
    for (const char* set : flags) {
        client.setProperty(ref, set, *tuvArray::logical(true));
        for (const char* p : flags) got += client.getProperty(ref, p)->logicalValue() ? "1" : "0";
        got += client.getProperty(ref, "IsEmpty")->logicalValue() ? "e;" : ";";
    }
    EXPECT_EQ(
        "dir/out.c;out;dir/out;source;me;t.tmpl;build;g;OUT_H;s1,s1;"
        "100000e;110000e;111000e;111100e;111110e;111111e;",
        got);

    for (const char* ro : {"Name", "BaseName", "NameWithoutExtension", "IsEmpty", "DefinedMacro"})
        EXPECT_EQ("Korb:ReadOnlyProperty", diagnosticOf([&] { client.setProperty(ref, ro, *str("x")); }))
            << ro;
}

TEST_F(FileClassBindingsTest, FileSectionIsOneObjectByKindNameNumberAndNamedAccessor) {
    VelCGModuleFile module("m.c");
    // By enumerator name, by number, and through the named accessor: one section.
    auto* byName = objectIn<FileSection>(call(module, "getFileSection", {str("DEFINES_SECTION")}));
    auto* byNumber = objectIn<FileSection>(call(module, "getFileSection", {tuvArray::float64(4)}));
    EXPECT_EQ(&module.getDefinesSection(), byName);
    EXPECT_EQ(byName, byNumber);
    EXPECT_EQ(byName, objectIn<FileSection>(call(module, "getDefinesSection")));
}

TEST_F(FileClassBindingsTest, MisspeltSectionKindIsABannerSectionThatDropsContent) {
    VelCGModuleFile module("m.c");
    // A misspelt kind is the banner kind, which a module file lacks: what a
    // script adds there is dropped.
    auto* missing = objectIn<FileSection>(call(module, "getFileSection", {str("DEFINE_SECTION")}));
    ASSERT_NE(nullptr, missing);
    call(*missing, "addContent", {str("dropped")});
    EXPECT_TRUE(call(*missing, "isEmpty")->logicalValue());
}

TEST_F(FileClassBindingsTest, HasSectionAnswersByNameAndByWholeNumberOnly) {
    VelCGModuleFile module("m.c");
    EXPECT_FALSE(call(module, "hasSection", {str("DEFINE_SECTION")})->logicalValue());
    EXPECT_TRUE(call(module, "hasSection", {str("FUNCTIONS_SECTION")})->logicalValue());
    EXPECT_FALSE(call(module, "hasSection", {tuvArray::float64(23)})->logicalValue());
    EXPECT_FALSE(call(module, "hasSection", {tuvArray::float64(-1)})->logicalValue());
    EXPECT_EQ("Korb:InvalidMethodArgument",
              diagnosticOf([&] { call(module, "hasSection", {tuvArray::float64(1.5)}); }));
}

TEST_F(FileClassBindingsTest, FileSectionMethodsAddAndReadContent) {
    VelCGModuleFile module("m.c");
    auto* byName = objectIn<FileSection>(call(module, "getFileSection", {str("DEFINES_SECTION")}));
    ASSERT_NE(nullptr, byName);
    call(*byName, "addContent", {str("#define A\n")});
    EXPECT_FALSE(call(*byName, "isEmpty")->logicalValue());
    EXPECT_EQ("#define A\n", call(*byName, "getContent")->toUtf8());
}

TEST_F(FileClassBindingsTest, IncludesSectionMembersAddAndListIncludes) {
    VelCGModuleFile module("m.c");
    auto* includes = objectIn<FileSection>(call(module, "getIncludesSection"));
    ASSERT_NE(nullptr, includes);
    EXPECT_STREQ("VelCG.IncludesSection", includes->getFullyQualifiedKorbTypeName());
    call(*includes, "addInclude", {str("math.h"), tuvArray::logical(true)});
    auto required = tuvArray::cell(1, 1);
    required->setCell(0, str("common.h"));
    client.setProperty(includes->makeRef(), "RequiredIncludes", *required);
    client.setProperty(includes->makeRef(), "UtilityIncludes", *required);
    EXPECT_EQ("common.h", client.getProperty(includes->makeRef(), "UtilityIncludes")->getCell(0)->toUtf8());
    EXPECT_EQ("\n#include \"common.h\"\n#include <math.h>\n\n#include \"common.h\"\n",
              call(*includes, "getContent")->toUtf8());
}

TEST_F(FileClassBindingsTest, FunctionsSectionMembersCountFromOne) {
    VelCGModuleFile module("m.c");
    auto* functions = objectIn<FileSection>(call(module, "getFunctionsSection"));
    ASSERT_NE(nullptr, functions);
    call(*functions, "addFunction", {str("f"), str("void f(void) {}\n")});
    call(*functions, "addFunction", {str("g"), str("void g(void) {}\n")});
    EXPECT_EQ(2u, call(*functions, "getNumberOfFunctions")->uint32Value());
    EXPECT_EQ("void f(void) {}\n", call(*functions, "getFunction", {tuvArray::float64(1)})->toUtf8());
    EXPECT_EQ("g", call(*functions, "getFunctionName", {tuvArray::float64(2)})->toUtf8());
    EXPECT_EQ("VelCG:FunctionsSection:InvalidFunctionIndex",
              diagnosticOf([&] { call(*functions, "getFunction", {tuvArray::float64(0)}); }));
}

TEST_F(FileClassBindingsTest, EveryNamedAccessorAnswersTheSectionOfItsKind) {
    VelCGModuleFile module("m.c");
    VelCGGenericFile generic("g.c");
    VelCGDataTypesFile types("t.h");
    const std::pair<const char*, VelCGFileSectionKind> accessors[] = {
        {"getIncludesSection", INCLUDES_SECTION},
        {"getDefinesSection", DEFINES_SECTION},
        {"getForwardDeclarationsSection", FORWARD_DECLS_SECTION},
        {"getTypedefsSection", TYPEDEFS_SECTION},
        {"getEnumsSection", ENUMERATIONS_SECTION},
        {"getDefinitionsSection", DEFINITIONS_SECTION},
        {"getExternDataSection", EXTERN_DATA_SECTION},
        {"getExternFunctionsSection", EXTERN_FCNS_SECTION},
        {"getFunctionPrototypesSection", FCN_PROTOTYPES_SECTION},
        {"getDeclarationsSection", DECLARATIONS_SECTION},
        {"getFunctionsSection", FUNCTIONS_SECTION},
        {"getCompilerErrorsSection", COMPILER_ERRORS_SECTION},
        {"getCompilerWarningsSection", COMPILER_WARNINGS_SECTION},
        {"getDocumentationSection", DOCUMENTATION_SECTION},
    };
    std::string found;
    for (VelCGFile* file : {static_cast<VelCGFile*>(&module), static_cast<VelCGFile*>(&generic),
                            static_cast<VelCGFile*>(&types)}) {
        int count = 0;
        for (const auto& [name, kind] : accessors) {
            if (!client.findClass(file->getFullyQualifiedKorbTypeName())->findOwnMethod(name)) continue;
            ++count;
            EXPECT_EQ(&file->getFileSection(kind), objectIn<FileSection>(call(*file, name))) << name;
        }
        found += std::to_string(count) + ";";
    }
    EXPECT_EQ("10;14;3;", found);
}
