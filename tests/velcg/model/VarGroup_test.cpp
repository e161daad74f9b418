#include "velcg/VarGroup.hpp"

#include <gtest/gtest.h>

using namespace VelCG;

namespace {

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
