#include "velcg/VelCGFileRepository.hpp"

#include <gtest/gtest.h>

#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

using namespace VelCG;

TEST(VelCGFileRepository, RepeatedNamesCoexistAndTheNewestIsFoundExactly) {
    VelCGFileRepository repo;
    VelCGGenericFile& first = repo.createGenericFile("a.c");
    VelCGDataTypesFile& types = repo.createDataTypesFile("types.h");
    VelCGGenericFile& second = repo.createGenericFile("a.c");

    EXPECT_EQ((std::vector<VelCGFile*>{&first, &types, &second}), repo.getFileList());
    EXPECT_EQ(repo.getFileList(), repo.getFileList_korb());
    EXPECT_EQ(&second, repo.findFileByName("a.c"));
    EXPECT_EQ(2, repo.findFileIndexByName("a.c"));
    EXPECT_EQ(1, repo.findFileIndexByName("types.h"));
    for (const char* missing : {"A.c", "a.c ", "./a.c", "a", ""}) {
        EXPECT_EQ(nullptr, repo.findFileByName(missing)) << missing;
        EXPECT_EQ(-1, repo.findFileIndexByName(missing)) << missing;
    }
}

TEST(VelCGFileRepository, ModuleFilesAreEnteredUnderEachOfTheirIndices) {
    VelCGFileRepository repo;
    VelCGModuleFile& h1 = repo.createModuleHeaderFile("h1.h", {2, 2, 5});
    VelCGModuleFile& h2 = repo.createModuleHeaderFile("h2.h", {5});
    VelCGModuleFile& src = repo.createModuleSourceFile("s.c", {});
    VelCGModuleFile& src2 = repo.createModuleSourceFile("s2.c", {2});

    EXPECT_EQ(&h1, repo.getModuleHeaderFileByIndex(2));
    EXPECT_EQ(&h2, repo.getModuleHeaderFileByIndex(5));
    EXPECT_EQ(nullptr, repo.getModuleHeaderFileByIndex(0));
    EXPECT_EQ(&src2, repo.getModuleSourceFileByIndex(2));
    EXPECT_EQ(nullptr, repo.getModuleSourceFileByIndex(-1));
    EXPECT_EQ(nullptr, repo.getModuleSourceFileByIndex(5));
    // In the list and found by name although no index names it.
    EXPECT_EQ(&src, repo.findFileByName("s.c"));
    EXPECT_EQ(4u, repo.getFileList().size());
}
