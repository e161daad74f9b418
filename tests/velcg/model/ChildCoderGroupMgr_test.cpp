#include "velcg/ChildCoderGroupMgr.hpp"

#include <gtest/gtest.h>
#include <stdexcept>

#include "DiagnosticTesting.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/ChildCoderDataGroup.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

std::unique_ptr<CoderDataGroup> group(const std::string& name, const std::string& rootType = "",
                                      bool self = false) {
    auto g = std::make_unique<ChildCoderDataGroup>(name);
    g->setRootGroupTypeName(rootType);
    g->setSelfGroup(self);
    return g;
}

TEST(ChildCoderGroupMgr, SettingAGroupTwiceReplacesIt) {
    ChildCoderGroupMgr mgr;
    mgr.setChildCoderGroup(u"M", group("G", "first"));
    auto second = group("G", "second");
    const CoderDataGroup* secondRaw = second.get();
    mgr.setChildCoderGroup(u"M", std::move(second));
    EXPECT_EQ((std::vector<std::string>{"G"}), mgr.getChildCoderGroupNames(u"M"));
    EXPECT_EQ(secondRaw, mgr.getChildCoderGroup(u"M", "G"));
    EXPECT_EQ(nullptr, mgr.getChildCoderGroup(u"M", "H"));
    EXPECT_EQ(nullptr, mgr.getChildCoderGroup(u"Other", "G"));
    EXPECT_TRUE(mgr.getChildCoderGroupNames(u"Other").empty());
}

TEST(ChildCoderGroupMgr, SelfGroupName) {
    ChildCoderGroupMgr mgr;
    mgr.setChildCoderGroup(u"M", group("G"));
    EXPECT_EQ("", mgr.getChildSelfGroupName(u"M"));
    EXPECT_EQ("", mgr.getChildSelfGroupName(u"Unknown"));
    mgr.setChildCoderGroup(u"M", group("Self", "", true));
    EXPECT_EQ("Self", mgr.getChildSelfGroupName(u"M"));
}

TEST(ChildCoderGroupMgr, VariablesPerBlockAndPerGroup) {
    ChildCoderGroupMgr mgr;
    mgr.setChildCoderGroup(u"M", group("G", "G_Type"));
    mgr.setChildCoderGroup(u"M", group("H", "H_Type"));
    mgr.addVariableForChildGroup(u"M", "G", "g1", 1);
    mgr.addVariableForChildGroup(u"M", "G", "g2", 2);
    mgr.addVariableForChildGroup(u"M", "G", "g1b", 1); // same block: first name kept

    const auto* infos = mgr.getVarInfoForGroup("G");
    ASSERT_NE(nullptr, infos);
    ASSERT_EQ(3u, infos->size());
    EXPECT_EQ("G_Type", (*infos)[0].getTypeName());
    EXPECT_EQ("g2", (*infos)[1].getVarName());
    EXPECT_EQ(1, (*infos)[2].getCompiledModelBlockIndex());
    EXPECT_EQ(nullptr, mgr.getVarInfoForGroup("H"));

    EXPECT_EQ("g1", mgr.getChildCoderGroupVarName("G", 1));
    EXPECT_EQ("g2", mgr.getChildCoderGroupVarName("G", 2));
    EXPECT_EQ("", mgr.getChildCoderGroupVarName("G", 3)) << "unknown block";
    try {
        mgr.getChildCoderGroupVarName("H", 1);
        FAIL() << "a known block without the group must throw";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ("invalid unordered_map<K, T> key", e.what());
    }
}

TEST(ChildCoderGroupMgr, UnknownGroupsAndNullGroupsAreDiagnostics) {
    ChildCoderGroupMgr mgr;
    mgr.setChildCoderGroup(u"M", group("G"));
    for (auto [model, name] : {std::pair{u"M", "X"}, {u"N", "G"}})
        EXPECT_EQ("VelCG:Model:UnknownChildCoderGroup",
                  diagnosticOf([&] { mgr.addVariableForChildGroup(model, name, "v", 0); }))
            << name;
    EXPECT_EQ(nullptr, mgr.getVarInfoForGroup("X"));
    EXPECT_EQ("VelCG:Model:NullArgument", diagnosticOf([&] { mgr.setChildCoderGroup(u"M", nullptr); }));
}

} // namespace
