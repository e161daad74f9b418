#include "vel/tuvArray.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace {

using testing_support::diagnosticOf;

TEST(tuvArray, FactoriesGiveClassShapeAndValue) {
    struct Row {
        tuvArrayPtr a;
        const char* cls;
        std::size_t rows, cols;
        std::string shown;
    } rows[] = {
        {tuvArray::empty(), "double", 0, 0, "0x0 double array"},
        {tuvArray::logical(true), "logical", 1, 1, "logical true"},
        {tuvArray::int32(-3), "int32", 1, 1, "int32 -3"},
        {tuvArray::uint32(4000000000u), "uint32", 1, 1, "uint32 4e+09"},
        {tuvArray::int64(-5), "int64", 1, 1, "int64 -5"},
        {tuvArray::float64(2.5), "double", 1, 1, "double 2.5"},
        {tuvArray::fromUtf8("ab"), "char", 1, 2, "'ab'"},
        {tuvArray::fromUtf8(""), "char", 0, 0, "''"},
        {tuvArray::chars({u'a', char16_t(0xD800)}), "char", 1, 2, "1x2 char array that is not valid Unicode"},
        {tuvArray::int32Vector({1, 2, 3}), "int32", 1, 3, "1x3 int32 array"},
        {tuvArray::int32Vector({}), "int32", 0, 0, "0x0 int32 array"},
        {tuvArray::int64Vector({1, 2}), "int64", 1, 2, "1x2 int64 array"},
        {tuvArray::cell(0, 1), "cell", 0, 1, "0x1 cell array"},
        {tuvArray::cell(2), "cell", 2, 1, "2x1 cell array"},
        {tuvArray::objects({}), "handle", 0, 0, "0x0 handle array"},
        {tuvArray::opaque("embedded.type", nullptr), "embedded.type", 1, 1, "1x1 embedded.type array"},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(r.cls, r.a->className()) << r.shown;
        EXPECT_EQ(r.rows, r.a->rows()) << r.shown;
        EXPECT_EQ(r.cols, r.a->cols()) << r.shown;
        EXPECT_EQ(r.shown, r.a->describe());
    }
    EXPECT_EQ(4000000000u, tuvArray::uint32(4000000000u)->uint32Value());
    EXPECT_EQ(-5, tuvArray::int64(-5)->int64Value());
    EXPECT_EQ(-3.0, tuvArray::int32(-3)->numericValue());
    EXPECT_EQ(std::wstring(L"\u00e9"), tuvArray::fromUtf8("\xc3\xa9")->toWide());
}

TEST(tuvArray, CellsHoldSharedArraysAndCheckBounds) {
    auto c = tuvArray::cell(2, 1);
    EXPECT_TRUE(c->getCell(1)->isEmpty());
    auto s = tuvArray::fromUtf8("x");
    c->setCell(1, s);
    EXPECT_EQ(s, c->getCell(1));
    c->setCell(0, nullptr);
    EXPECT_TRUE(c->getCell(0)->isEmpty()) << "a null cell reads as empty";
    EXPECT_EQ("tuv:IndexOutOfRange", diagnosticOf([&] { c->getCell(2); }));
    EXPECT_EQ("tuv:IndexOutOfRange", diagnosticOf([&] { c->setCell(2, s); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([&] { s->setCell(0, s); }));
}

TEST(tuvArray, TypedReadsRefuseOtherClassesAndShapes) {
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::int32(1)->logicalValue(); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::float64(1)->int32Value(); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::int32(1)->toUtf8(); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::fromUtf8("a")->numericValue(); }));
    EXPECT_EQ("tuv:NotScalar", diagnosticOf([] { tuvArray::int32Vector({1, 2})->int32Value(); }));
    EXPECT_EQ("tuv:NotScalar", diagnosticOf([] { tuvArray::empty()->doubleValue(); }));
    EXPECT_EQ("tuv:IndexOutOfRange", diagnosticOf([] { tuvArray::int32Vector({1})->numericAt(1); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::cell(1)->handles(); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::int64Vector({1})->int32Data(); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::int64Vector({1})->doubleData(); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::int32Vector({1})->int64Data(); }));
    EXPECT_EQ("tuv:WrongClass", diagnosticOf([] { tuvArray::fromUtf8("a")->logicalData(); }));
}

// Scalars keep their element inside the array; vectors of one element do
// not. Both read alike, copies read their own element, and typed reads keep
// integers beyond double precision.
TEST(tuvArray, ScalarsAndVectorsGiveTheSameElementViews) {
    struct Row {
        tuvArrayPtr a;
        std::vector<double> elements;
    } rows[] = {
        {tuvArray::logical(true), {1}},
        {tuvArray::int32(-7), {-7}},
        {tuvArray::int32Vector({-7}), {-7}},
        {tuvArray::uint32(9), {9}},
        {tuvArray::int64(-(std::int64_t(1) << 40)), {-1099511627776.0}},
        {tuvArray::int64Vector({1, 2}), {1, 2}},
        {tuvArray::float64(0.5), {0.5}},
        {tuvArray::doubleVector({0.5}), {0.5}},
        {tuvArray::empty(), {}},
    };
    for (const auto& r : rows) {
        const std::string shown = r.a->describe();
        ASSERT_EQ(r.elements.size(), r.a->numel()) << shown;
        const auto copy = std::make_shared<tuvArray>(*r.a);
        tuvArrayPtr original = r.a;
        for (std::size_t i = 0; i < r.elements.size(); ++i) {
            EXPECT_EQ(r.elements[i], original->numericAt(i)) << shown;
            EXPECT_EQ(r.elements[i], copy->numericAt(i)) << shown;
        }
        original.reset();
        EXPECT_EQ(shown, copy->describe());
    }
    // 2^53 + 1 is the first integer a double cannot hold.
    const std::int64_t beyond = (std::int64_t(1) << 53) + 1;
    const std::vector<std::int64_t> values{beyond, -beyond, INT64_MAX, INT64_MIN};
    EXPECT_EQ(values, tuvArray::int64Vector(values)->int64Data());
    EXPECT_EQ(beyond, tuvArray::int64(beyond)->int64Value());
    EXPECT_EQ(std::vector<std::int64_t>{beyond}, tuvArray::int64(beyond)->int64Data());
    EXPECT_EQ(std::vector<std::uint32_t>{UINT32_MAX}, tuvArray::uint32(UINT32_MAX)->uint32Data());
    EXPECT_EQ((std::vector<double>{0.1, -2.5}), tuvArray::doubleVector({0.1, -2.5})->doubleData());
    EXPECT_EQ((std::vector<std::uint8_t>{1}), tuvArray::logical(true)->logicalData());
    EXPECT_EQ(std::vector<std::int32_t>{5}, tuvArray::int32(5)->int32Data());
    EXPECT_EQ(tuvArray::int32(5)->int32Data(), tuvArray::int32Vector({5})->int32Data());
    EXPECT_TRUE(tuvArray::empty()->doubleData().empty());
}

} // namespace
