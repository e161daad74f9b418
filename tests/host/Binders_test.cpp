#include "korb/Binders.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"

namespace {

using testing_support::diagnosticWithArgumentsOf;

class Pair : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "Test.Pair"; }
    void setBoth(int first, int second) {
        first_ = first;
        second_ = second;
    }
    std::string text() const { return std::to_string(first_) + "," + std::to_string(second_); }

private:
    int first_ = 0;
    int second_ = 0;
};

TEST(MethodBinder, ConvertsEveryArgumentBeforeTheNativeCall) {
    auto setBoth = korb::method(&Pair::setBoth);
    EXPECT_EQ(2u, setBoth->arity());
    struct Row {
        std::vector<tuvArrayPtr> args;
        const char* diagnostic;
    } rows[] = {
        {{tuvArray::int32(1)}, "Korb:WrongNumberOfArguments(2, 1)"},
        {{tuvArray::int32(1), tuvArray::fromUtf8("2")},
         "Korb:InvalidArgument(2, Expected a value of type 'int32 scalar', but got '2'.)"},
        {{nullptr, tuvArray::int32(2)},
         "Korb:InvalidArgument(1, Expected a value of type 'any', but got a null array.)"},
    };
    for (const auto& r : rows) {
        Pair p;
        EXPECT_EQ(r.diagnostic, diagnosticWithArgumentsOf([&] { setBoth->call(p, r.args); }));
        EXPECT_EQ("0,0", p.text()) << "the native function did not run";
    }
    Pair p;
    EXPECT_TRUE(setBoth->call(p, {tuvArray::int32(1), tuvArray::float64(2)})->isEmpty());
    EXPECT_EQ("1,2", p.text());
    EXPECT_EQ("1,2", korb::method(&Pair::text)->call(p, {})->toUtf8());
}

} // namespace
