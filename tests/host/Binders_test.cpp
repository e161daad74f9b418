#include "korb/Binders.hpp"

#include <gtest/gtest.h>
#include <memory>
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
    Pair* self() { return this; }
    std::vector<Pair*> both() { return {this, this}; }
    void rename(const std::string&, double) {}

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

TEST(GetterBinder, DeliversTheValueUnderItsHostTypeName) {
    Pair p;
    p.setBoth(3, 4);
    korb::Value v = korb::getterFn<Pair>([](Pair& x) { return x.text(); })->getValue(p);
    EXPECT_EQ("char", v.hostType);
    EXPECT_EQ("3,4", v.data->toUtf8());
}

TEST(Binders, DeclareHostTypesAndWhetherOneObjectIsDelivered) {
    struct GetterRow {
        const char* what;
        std::unique_ptr<korb::GetterBinder> binder;
        const char* hostType;
        bool oneObject;
    };
    GetterRow getters[] = {
        {"pointer to an object", korb::getter(&Pair::self), "any", true},
        {"list of objects", korb::getter(&Pair::both), "any", false},
        {"host array", korb::getterFn<Pair>([](Pair&) { return tuvArray::objects({}); }), "any", false},
        {"text", korb::getter(&Pair::text), "char", false},
    };
    for (const auto& r : getters) {
        EXPECT_EQ(r.hostType, r.binder->hostTypeName()) << r.what;
        EXPECT_EQ(r.oneObject, r.binder->deliversOneObject()) << r.what;
    }

    struct MethodRow {
        const char* what;
        std::unique_ptr<korb::MethodBinder> binder;
        std::vector<std::string> argumentTypes;
        const char* resultType;
        bool oneObject;
    };
    MethodRow methods[] = {
        {"returns nothing", korb::method(&Pair::setBoth), {"int32 scalar", "int32 scalar"}, "", false},
        {"const reference arguments", korb::method(&Pair::rename), {"char", "double scalar"}, "", false},
        {"returns text", korb::method(&Pair::text), {}, "char", false},
        {"returns one object", korb::method(&Pair::self), {}, "any", true},
        {"returns a list of objects", korb::method(&Pair::both), {}, "any", false},
        {"callable returning one object",
         korb::methodFn<Pair, Pair*, std::string>([](Pair& p, const std::string&) { return &p; }),
         {"char"},
         "any",
         true},
    };
    for (const auto& r : methods) {
        EXPECT_EQ(r.argumentTypes, r.binder->argumentTypes()) << r.what;
        EXPECT_EQ(r.argumentTypes.size(), r.binder->arity()) << r.what;
        EXPECT_EQ(r.resultType, r.binder->resultType()) << r.what;
        EXPECT_EQ(r.oneObject, r.binder->returnsOneObject()) << r.what;
    }
    // A method that returns one object delivers it as a 1-by-1 array.
    Pair p;
    EXPECT_EQ(&p, korb::method(&Pair::self)->call(p, {})->handles().at(0).get());
}

} // namespace
