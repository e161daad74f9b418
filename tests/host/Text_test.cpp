#include "vel/i18n/Text.hpp"

#include <gtest/gtest.h>

#include "vel/diag/Diagnostic.hpp"

namespace {

using namespace vel::i18n;

TEST(Text, RoundTripsEveryPlaneAndEmbeddedNul) {
    const std::string samples[] = {
        "",
        "plain",
        std::string("a\0b", 3),
        "\xc3\xa9t\xc3\xa9", // U+00E9
        "\xe2\x82\xac",      // U+20AC
        "\xf0\x9f\x98\x80",  // U+1F600, a surrogate pair in UTF-16
    };
    for (const auto& s : samples) {
        EXPECT_EQ(s, toUtf8(toWide(s)));
        EXPECT_EQ(s, toUtf8(toUString(s)));
        EXPECT_EQ(toWide(s), toWide(toUString(s)));
        EXPECT_EQ(toUString(s), toUString(toWide(s)));
    }
    EXPECT_EQ(2u, toUString("\xf0\x9f\x98\x80").size());
    EXPECT_EQ(std::wstring(L"\u00e9"), toWide("\xc3\xa9"));
}

TEST(Text, InvalidInputRaisesOneDiagnostic) {
    const std::string badUtf8[] = {"\xff", "abc\xc3", "\xc0\xaf", "\xed\xa0\x80"};
    for (const auto& s : badUtf8) {
        EXPECT_THROW(toWide(s), vel::diag::Exception);
        try {
            toUString(s);
            ADD_FAILURE() << "accepted invalid UTF-8";
        } catch (const vel::diag::Exception& e) {
            EXPECT_EQ("i18n:InvalidText", e.identifier());
        }
    }
    std::u16string loneSurrogate = {u'a', char16_t(0xD800)};
    EXPECT_THROW(toUtf8(loneSurrogate), vel::diag::Exception);
}

} // namespace
