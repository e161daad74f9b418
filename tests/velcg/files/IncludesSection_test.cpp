#include "velcg/IncludesSection.hpp"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "files/FileTesting.hpp"

using namespace VelCG;

TEST(IncludesSection, AddsEachHeaderOnceWhateverItsForm) {
    IncludesSection s;
    s.addInclude("a.h", false);
    s.addInclude("a.h", false);
    s.addInclude("a.h", true);
    s.addInclude("math.h", true);
    EXPECT_EQ("#include \"a.h\"\n#include <math.h>\n", s.getContent());
}

TEST(IncludesSection, MergesRequiredAndUtilityIncludesAroundTheScriptText) {
    struct Case {
        const char* what;
        std::vector<std::string> fragments, required, utility;
        std::string expected;
    } cases[] = {
        {"lists only",
         {},
         {"<stdio.h>", "common.h"},
         {"<math.h>", "util.h"},
         "\n#include <stdio.h>\n\n#include \"common.h\"\n\n#include <math.h>\n\n#include \"util.h\"\n"},
        {"script text between",
         {"/* mine */\n"},
         {"common.h"},
         {"util.h", "<math.h>"},
         "\n#include \"common.h\"\n\n#include <math.h>\n/* mine */\n\n#include \"util.h\"\n"},
        {"already present after a newline",
         {"x\n#include <stdio.h>\n"},
         {"<stdio.h>"},
         {},
         "x\n#include <stdio.h>\n"},
        {"present only as first line is not recognised",
         {"#include <stdio.h>\n"},
         {"<stdio.h>"},
         {},
         "\n#include <stdio.h>\n#include <stdio.h>\n"},
        {"presence is looked for in the script text only",
         {},
         {"<a.h>"},
         {"<a.h>"},
         "\n#include <a.h>\n\n#include <a.h>\n"},
        {"empty entries add nothing", {"t\n"}, {""}, {""}, "t\n"},
        {"prefix of another header is not a match",
         {"\n#include \"common.h.in\"\n"},
         {"common.h"},
         {},
         "\n#include \"common.h\"\n\n#include \"common.h.in\"\n"},
    };
    for (const Case& c : cases) {
        IncludesSection s;
        for (const auto& f : c.fragments) s.addContent(f);
        for (const auto& r : c.required) s.addRequiredInclude(r);
        for (const auto& u : c.utility) s.addUtilityInclude(u);
        EXPECT_EQ(c.expected, s.getContent()) << c.what;
        // Writing gives the same bytes, and a clone renders the same.
        EXPECT_EQ(c.expected, files_testing::bytesWrittenBy([&](std::FILE* f) { s.writeToFile(f); }))
            << c.what;
        EXPECT_EQ(c.expected, s.clone()->getContent()) << c.what;
    }
}

TEST(IncludesSection, SettingAListKeepsDuplicatesAndReseedsItsDeduplication) {
    IncludesSection s;
    s.addRequiredInclude("old.h");
    s.setRequiredIncludes({"a.h", "a.h"});
    s.addRequiredInclude("a.h");
    s.addRequiredInclude("old.h");
    EXPECT_EQ((std::vector<std::string>{"a.h", "a.h", "old.h"}), s.getRequiredIncludes());

    s.setUtilityIncludes({"u.h"});
    s.addUtilityInclude("u.h");
    s.addUtilityInclude("v.h");
    EXPECT_EQ((std::vector<std::string>{"u.h", "v.h"}), s.getUtilityIncludes());
}
