#include "velcg/PlainFileName.hpp"

#include <gtest/gtest.h>
#include <string>

#include "RefusedFileNames.hpp"

using VelCG::fileNameFoldKey;
using VelCG::plainFileNameProblem;

namespace {

TEST(PlainFileName, RefusesEveryNameThatIsNotOneComponentOnEveryPlatform) {
    for (const auto& [name, reason] : testing_support::refusedFileNames()) {
        const auto problem = plainFileNameProblem(name);
        ASSERT_TRUE(problem) << "accepted: " << name;
        EXPECT_EQ(0u, problem->find(reason)) << name << ": " << *problem;
    }
    const std::string accepted[] = {
        "a.c",   "model_types.h", ".hidden",        "a..b.c",         "CONSOLE.c", "com10.h",
        "lpt.c", "nul_.c",        "COM\xC2\xB9x.c", "\xC3\xA4pfel.c", "x y.c",     std::string(255, 'a')};
    for (const std::string& name : accepted)
        EXPECT_FALSE(plainFileNameProblem(name)) << name << ": " << plainFileNameProblem(name).value_or("");
}

TEST(PlainFileName, FoldKeysAreEqualExactlyForNamesThatIgnoringCaseAreOneFile) {
    const struct {
        const char* a;
        const char* b;
        bool same;
    } pairs[] = {
        {"Main.C", "main.c", true},
        {"\xC3\x84PFEL.c", "\xC3\xA4pfel.c", true},  // non-ASCII letters fold too
        {"a\xCC\x88pfel.c", "\xC3\xA4pfel.c", true}, // and decomposed letters compose
        {"main.c", "main.h", false},
        {"\xFF\xFE.c", "\xFF\xFE.c", true}, // bytes that are not UTF-8 are their own key
        {"\xFF\xFE.c", "\xFF\xFF.c", false},
    };
    for (const auto& p : pairs)
        EXPECT_EQ(p.same, fileNameFoldKey(p.a) == fileNameFoldKey(p.b)) << p.a << " / " << p.b;
}

} // namespace
