#include <gtest/gtest.h>
#include <string>

#include "DiagnosticTesting.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "vel/mi/HandleClass.hpp"
#include "velcg/FileSection.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

using namespace VelCG;

namespace {

// The file classes' members show in VelCGPackage_test.cpp; a kind by
// enumerator name or number is the kind's own section (FileSection_test.cpp).
TEST(FileClassBindings, EveryNamedAccessorAnswersTheSectionOfItsKind) {
    PlexoInitialize_velcg();
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
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
            const tuvArrayPtr section = client.callMethod(file->makeRef(), name);
            EXPECT_EQ(&file->getFileSection(kind), section->handles().at(0).get()) << name;
        }
        found += std::to_string(count) + ";";
    }
    EXPECT_EQ("10;14;3;", found);
    // A kind given as a number is a whole one: anything else is refused, not truncated.
    EXPECT_EQ("Korb:InvalidMethodArgument", testing_support::diagnosticOf([&] {
                  client.callMethod(module.makeRef(), "hasSection", {tuvArray::float64(1.5)});
              }));
}

} // namespace
