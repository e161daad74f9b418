#include "velcg/VarGroup.hpp"

#include <gtest/gtest.h>

using namespace VelCG;

namespace {

TEST(VarGroup, NewGroupDefaults) {
    VarGroup g;
    EXPECT_EQ(VarGroupEnum::BlockIO, g.getCategory());
    EXPECT_STREQ("BlockIO", g.getCategoryString());
    EXPECT_EQ("localB", g.getLocalName());
    for (int index : {g.getSystemIndex(), g.getParentVarGroupIndex(), g.getMemberIndexInParent(),
                      g.getCGTypeIndex(), g.getCoderGroupIndex()})
        EXPECT_EQ(-1, index);
}

TEST(VarGroup, CategoryNamesKeepTheGapBefore103) {
    const struct {
        int value;
        const char* name;
    } rows[] = {{0, "ExternalInput"},
                {3, "BlockIO"},
                {9, "ConstParameterWithInit"},
                {14, "ZCSV"},
                {17, "Self"},
                {18, ""},
                {102, ""},
                {103, "HierarchicalCoderData"},
                {104, ""},
                {-1, ""}};
    for (const auto& r : rows)
        EXPECT_STREQ(r.name, VarGroup::getStringforCategory(static_cast<VarGroupEnum>(r.value))) << r.value;
}

TEST(VarGroup, AppendersExtendTheLists) {
    VarGroup g;
    g.setElements({"a"});
    g.addElement("b");
    g.addSubStructName("S");
    g.addSubStructIndex(4);
    g.addSubStructIndex(2);
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), g.getElements());
    EXPECT_EQ((std::vector<std::string>{"S"}), g.getSubStructNames());
    EXPECT_EQ((std::vector<int>{4, 2}), g.getSubStructIndices());
}

TEST(VarGroup, GetSysNameSplitsOnFirstOccurrences) {
    const struct {
        const char* input;
        const char* system;
        const char* name;
    } rows[] = {
        {"<S1>/Gain", "S1", "Gain"},
        {"Gain", "", ""},
        {"<>/x", "", "x"},
        {"<a/b>/c", "a/b", "b>/c"}, // the first '/' is inside the brackets
        {"<S1>", "S1", ""},
        {"<S1/b", "", ""}, // '<' without '>'
        {"a/b", "", ""},   // no '>': the name part is not taken
        {"x>/y", "", "y"},
        {">a<b", "", ""},
        {"", "", ""},
    };
    for (const auto& r : rows) {
        auto parts = getSysName(r.input);
        ASSERT_EQ(2u, parts.size());
        EXPECT_EQ(r.system, parts[0]) << r.input;
        EXPECT_EQ(r.name, parts[1]) << r.input;
    }
}

} // namespace
