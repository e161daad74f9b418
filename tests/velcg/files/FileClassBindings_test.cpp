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
