#include "velcg/System.hpp"

#include <gtest/gtest.h>

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

} // namespace
