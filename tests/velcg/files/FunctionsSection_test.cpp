#include "velcg/FunctionsSection.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "DiagnosticTesting.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

// Scripts read the first function as 1 and refuse 0 (test_objects.py).
TEST(FunctionsSection, KeepsFunctionsWithTheirNamesCountingFromZeroNativelyAndOneForScripts) {
    FunctionsSection s;
    s.addFunction("f", "void f(void) {}\n");
    s.addFunction("f", std::string("void g(void) {}\0junk", 20));
    s.addContent("/* not a function */\n");

    EXPECT_EQ(3u, s.getNumberOfFunctions());
    EXPECT_EQ("void g(void) {}", s.getFunction(1));
    EXPECT_EQ("f", s.getFunctionName(1));
    EXPECT_EQ("/* not a function */\n", s.korb_getFunction(3));
    EXPECT_EQ("f", s.korb_getFunctionName(2));

    // A clone keeps the names beside the fragments.
    std::unique_ptr<FileSection> copy = s.clone();
    auto* functions = dynamic_cast<FunctionsSection*>(copy.get());
    ASSERT_NE(nullptr, functions);
    EXPECT_EQ("void f(void) {}\nvoid g(void) {}/* not a function */\n", functions->getContent());
    EXPECT_EQ("f", functions->getFunctionName(1));

    // Indices past the functions, or past the names, are diagnosed.
    const char* id = "VelCG:FunctionsSection:InvalidFunctionIndex";
    EXPECT_EQ(id, diagnosticOf([&] { s.getFunction(3); }));
    EXPECT_EQ(id, diagnosticOf([&] { s.getFunctionName(2); }));
    EXPECT_EQ(id, diagnosticOf([&] { s.korb_getFunction(4); }));
    EXPECT_EQ(id, diagnosticOf([&] { s.korb_getFunctionName(3); }));
    EXPECT_EQ(id, diagnosticOf([&] { s.korb_getFunctionName(-1); }));
}
