#include "velcg/System.hpp"

#include <gtest/gtest.h>

#include "velcg/GraphicalBlock.hpp"
#include "velcg/StoredGraphicalBlock.hpp"

using namespace VelCG;

namespace {

TEST(System, SystemCodeSelectsExactlyOneReuseAnswer) {
    System s;
    const struct {
        unsigned code;
        bool inlined, nonReusable, reusable;
    } rows[] = {{3, false, false, false},
                {0, true, false, false},
                {1, false, true, false},
                {2, false, false, true},
                {5, false, false, false}};
    for (const auto& r : rows) {
        if (r.code != 3) s.setBriskSystemCode(r.code);
        EXPECT_EQ(r.inlined, s.isInlined()) << r.code;
        EXPECT_EQ(r.nonReusable, s.isNonReusable()) << r.code;
        EXPECT_EQ(r.reusable, s.isReusable()) << r.code;
    }
}

TEST(System, CallSitesAreNotOwned) {
    GraphicalBlock caller(new StoredGraphicalBlock(L"caller"));
    {
        System s;
        s.addGraphicalCallsite(&caller);
        s.setGraphicalCallsites({&caller, &caller});
        EXPECT_EQ(2u, s.getGraphicalCallsites().size());
    }
    EXPECT_EQ(L"caller", caller.getName()) << "the block outlives the system";
}

} // namespace
