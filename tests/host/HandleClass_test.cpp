#include "vel/mi/HandleClass.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "DiagnosticTesting.hpp"
#include "korb/Binders.hpp"

namespace {

using testing_support::diagnosticOf;
using testing_support::diagnosticWithArgumentsOf;

class Counter : public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "Test.Counter"; }
    int get() const { return count_; }
    void set(int v) { count_ = v; }
    void bump() { ++count_; }

private:
    int count_ = 0;
};

// A class record whose members each test declares itself.
class Record : public vel::mi::HandleClass {
public:
    Record() : HandleClass("Counter", "counts") {}
    using HandleClass::addMethod;
    using HandleClass::addProperty;
    using HandleClass::setElementClass;

protected:
    void registerMembers() override {}
};

TEST(HandleClass, FindsOwnMembersByNameInRegistrationOrder) {
    Record r;
    r.addProperty("Count", korb::getter(&Counter::get), korb::setter(&Counter::set));
    r.addProperty("Value", korb::getter(&Counter::get));
    r.addMethod("bump", korb::method(&Counter::bump));
    ASSERT_EQ(2u, r.getProperties().size());
    EXPECT_EQ("Value", r.getProperties()[1].name);
    EXPECT_EQ(&r.getProperties()[0], r.findOwnProperty("Count"));
    EXPECT_FALSE(r.findOwnProperty("Count")->isReadOnly());
    EXPECT_TRUE(r.findOwnProperty("Value")->isReadOnly());
    EXPECT_EQ(&r.getMethods()[0], r.findOwnMethod("bump"));
    EXPECT_EQ(nullptr, r.findOwnProperty("bump")) << "a method is not a property";
    EXPECT_EQ(nullptr, r.findOwnMethod("Count"));
    EXPECT_EQ("", r.getQualifiedName()) << "named by the object system only when registered";
}

TEST(HandleClass, AMemberNameIsUsedOnce) {
    struct Row {
        const char* what;
        std::function<void(Record&)> second;
    } rows[] = {
        {"property twice", [](Record& r) { r.addProperty("X", korb::getter(&Counter::get)); }},
        {"method named like a property", [](Record& r) { r.addMethod("X", korb::method(&Counter::bump)); }},
    };
    for (const auto& row : rows) {
        Record r;
        r.addProperty("X", korb::getter(&Counter::get));
        EXPECT_EQ("Korb:DuplicateMember", diagnosticOf([&] { row.second(r); })) << row.what;
        EXPECT_EQ(1u, r.getProperties().size() + r.getMethods().size()) << row.what;
    }
    Record r;
    r.addMethod("m", korb::method(&Counter::bump));
    EXPECT_EQ("Korb:DuplicateMember", diagnosticOf([&] { r.addProperty("m", korb::getter(&Counter::get)); }));
}

TEST(HandleClass, AnElementClassIsDeclaredForAnOwnPropertyOnly) {
    Record r;
    r.addProperty("Items", korb::getter(&Counter::get));
    r.addMethod("bump", korb::method(&Counter::bump));
    r.setElementClass("Items", "Test.Counter");
    EXPECT_EQ("Test.Counter", r.findOwnProperty("Items")->elementClass);
    EXPECT_EQ("Korb:UnknownProperty(Missing, Counter)",
              diagnosticWithArgumentsOf([&] { r.setElementClass("Missing", "Test.Counter"); }));
    EXPECT_EQ("Korb:UnknownProperty(bump, Counter)",
              diagnosticWithArgumentsOf([&] { r.setElementClass("bump", "Test.Counter"); }))
        << "a method holds nothing";
}

} // namespace
