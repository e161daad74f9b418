#include "CG/Type.hpp"

#include <functional>
#include <gtest/gtest.h>

#include "DiagnosticTesting.hpp"

namespace {

using CG::Type;
using testing_support::diagnosticOf;

TEST(Type, RendersCompositeTypes) {
    auto i32 = Type::integer("int32_t", 32, true);
    auto dbl = Type::floating("double", 64);
    auto bus = Type::structure("Bus", {{"a", i32}, {"b", Type::matrix(dbl, {2, 3})}});
    struct Row {
        Type::Ptr type;
        const char* text;
    } rows[] = {
        {i32, "int32_t"},
        {Type::complex(dbl), "complex<double>"},
        {Type::pointer(i32), "int32_t*"},
        {Type::matrix(dbl, {2, 3}), "double[2][3]"},
        {bus, "struct Bus { int32_t a; double[2][3] b; }"},
        {Type::boolean(), "bool"},
        {Type::voidType(), "void"},
    };
    for (const auto& r : rows) EXPECT_EQ(r.text, r.type->toString());
}

TEST(Type, RefusesMalformedTypes) {
    auto i32 = Type::integer("int32_t", 32, true);
    struct Row {
        const char* what;
        std::function<void()> build;
    } rows[] = {
        {"integer of 0 bits", [] { Type::integer("x", 0, true); }},
        {"16-bit floating point", [] { Type::floating("x", 16); }},
        {"complex of nothing", [] { Type::complex(nullptr); }},
        {"pointer to nothing", [] { Type::pointer(nullptr); }},
        {"negative dimension", [&] { Type::matrix(i32, {-1}); }},
        {"duplicate field",
         [&] {
             Type::structure("S", {{"a", i32}, {"a", i32}});
         }},
        {"field without type",
         [] {
             Type::structure("S", {{"a", nullptr}});
         }},
    };
    for (const auto& r : rows) EXPECT_EQ("CG:InvalidType", diagnosticOf(r.build)) << r.what;
}

} // namespace
