// Members found by name through the client's resolved class entries: every
// name finds its own member and only it, objects reach their native class
// whatever their layout, and registry changes reach lookups made before.
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "PackageTesting.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "korb/ValueSink.hpp"
#include "vel/mi/Handle.hpp"

namespace {

using korb::ClassInfo;
using korb::ObjectSystem;
using testing_support::diagnosticOf;

using Package = testing_support::FunctionPackage;
using Named = testing_support::NamedObject;

// Derived from a bound class, and a handle reached through a second base:
// both need the pointer adjustment of a real cast.
class NamedChild : public Named {
public:
    using Named::Named;
};
class Polymorphic {
public:
    virtual ~Polymorphic() = default;
    int filler = 7;
};
class SecondBase : public Polymorphic, public vel::mi::Handle {
public:
    const char* getFullyQualifiedKorbTypeName() const override { return "Lk.Second"; }
    int value = 41;
};

std::unique_ptr<korb::GetterBinder> constant(int n) {
    return korb::getterFn<Named>([n](const Named&) { return n; });
}

int readInt(const korb::Client& client, const vel::mi::Handle& object, const std::string& name) {
    return client.getProperty(object.makeRef(), name)->int32Value();
}

// Takes the integer a read delivers; anything else fails the test.
class IntegerSink final : public korb::ValueSink {
public:
    void logical(bool) override { fail(); }
    void integer(std::int64_t value) override { read = value; }
    void real(double) override { fail(); }
    void text(std::string_view) override { fail(); }
    void text(std::wstring_view) override { fail(); }
    void object(const vel::mi::Handle*) override { fail(); }
    void objects(std::size_t) override { fail(); }
    void array(tuvArrayPtr) override { fail(); }
    std::int64_t read = -1;

private:
    static void fail() { ADD_FAILURE() << "an integer property delivered something else"; }
};

// Reads through one cache per name for the whole test, as a script
// runtime's property descriptor keeps one: registry changes between reads
// must reach the caches as they reach readInt.
struct CachedReads {
    const korb::Client& client;
    std::map<std::string, korb::Client::ReadCache> caches;
    std::int64_t operator()(const vel::mi::Handle& object, const std::string& name) {
        IntegerSink sink;
        client.readProperty(object.makeRef(), name, caches[name], sink);
        return sink.read;
    }
};

TEST(ClassLookup, EveryNameFindsItsOwnMemberAndNoOther) {
    // Names of every length, alike in their first, middle and last
    // characters and in the words that longer names are compared by.
    std::vector<std::string> names;
    std::istringstream words(
        "a b ab ba abc acc abcd abdd abcdefg abcdefgh abcdefgi abcdefghijklmnop "
        "abcdefghijklmnoq abcdefghijklmnopq abcdefghXjklmnopq");
    for (std::string w; words >> w;) names.push_back(w);
    names.push_back(std::string(40, 'x'));
    names.push_back(std::string(20, 'x') + "y" + std::string(19, 'x'));
    const std::vector<std::string> misses = {
        "", "c", "abcde", "abcdefghijklmno", "abce", "Abcdefgh", "abcdefghYjklmnopq", std::string(39, 'x')};
    ObjectSystem system;
    system.addPackage(std::make_unique<Package>("Lk", [&](ObjectSystem& s) {
        s.registerClass(ClassInfo::make("Many", "many names", [&](ClassInfo& c) {
            for (std::size_t i = 0; i < names.size(); ++i)
                c.property(names[i], constant(static_cast<int>(i)));
            c.method("m" + names.back(), korb::methodFn<Named, int>([](Named&) { return 1; }));
        }));
    }));
    const korb::Client& client = system.getPublicClient();
    Named object("Lk.Many");
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(static_cast<int>(i), readInt(client, object, names[i]));
    for (const auto& miss : misses) {
        EXPECT_EQ("Korb:UnknownProperty", diagnosticOf([&] { client.getProperty(object.makeRef(), miss); }))
            << miss;
        EXPECT_FALSE(client.hasProperty(object, miss)) << miss;
    }
    EXPECT_EQ(1, client.callMethod(object.makeRef(), "m" + names.back())->int32Value());
    EXPECT_EQ("Korb:UnknownMethod", diagnosticOf([&] { client.callMethod(object.makeRef(), names.back()); }));
}

TEST(ClassLookup, ObjectsReachTheirNativeClassWhateverTheirLayout) {
    ObjectSystem system;
    system.addPackage(std::make_unique<Package>("Lk", [](ObjectSystem& s) {
        s.registerClass(
            ClassInfo::make("Named", "by name", [](ClassInfo& c) { c.property("Answer", constant(42)); }));
        s.registerClass(ClassInfo::make("Second", "second base", [](ClassInfo& c) {
            c.property("Value", korb::getterFn<SecondBase>([](const SecondBase& o) { return o.value; }));
        }));
    }));
    const korb::Client& client = system.getPublicClient();
    // Two objects naming one class from different addresses, one of a
    // class derived from the bound one.
    Named first("Lk.Named");
    NamedChild second("Lk.Named");
    EXPECT_EQ(42, readInt(client, first, "Answer"));
    EXPECT_EQ(42, readInt(client, second, "Answer"));
    EXPECT_EQ(&client.classOf(first), &client.classOf(second));
    SecondBase multi;
    EXPECT_EQ(41, readInt(client, multi, "Value"));
    // The same text at another address still names an unknown class.
    EXPECT_EQ("Korb:UnknownClass", diagnosticOf([&] { readInt(client, Named("Lk.Nobody"), "Answer"); }));
}

TEST(ClassLookup, RegistryChangesReachLookupsMadeBefore) {
    ObjectSystem system;
    const korb::Client& client = system.getPublicClient();
    system.addPackage(std::make_unique<Package>("LkBase", [](ObjectSystem& s) {
        s.registerClass(ClassInfo::make("Root", "root", [](ClassInfo& c) {
            c.property("Shared", constant(1));
            c.property("Inherited", constant(10));
        }));
    }));
    system.addPackage(std::make_unique<Package>("LkLeaf", [](ObjectSystem& s) {
        s.registerClass(ClassInfo::make("Leaf", "leaf", [](ClassInfo& c) {
            c.superclass("LkBase.Root");
            c.property("Shared", constant(2));
        }));
    }));
    Named root("LkBase.Root"), leaf("LkLeaf.Leaf");
    CachedReads cached{client, {}};
    EXPECT_EQ(1, readInt(client, root, "Shared"));
    EXPECT_EQ(2, readInt(client, leaf, "Shared"));
    EXPECT_EQ(10, readInt(client, leaf, "Inherited"));
    // One cache meets objects of two classes in turn.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(1, cached(root, "Shared"));
        EXPECT_EQ(2, cached(leaf, "Shared"));
    }
    EXPECT_EQ(10, cached(leaf, "Inherited"));

    // The superclass goes: its objects are unknown, and the subclass keeps
    // only its own members.
    system.removeClasses("LkBase");
    EXPECT_EQ("Korb:UnknownClass", diagnosticOf([&] { readInt(client, root, "Shared"); }));
    EXPECT_EQ(2, readInt(client, leaf, "Shared"));
    EXPECT_EQ("Korb:UnknownProperty", diagnosticOf([&] { readInt(client, leaf, "Inherited"); }));
    EXPECT_EQ(nullptr, client.findProperty(client.classOf(leaf), "Inherited"));
    // The caches hold the entries the change freed.
    EXPECT_EQ("Korb:UnknownClass", diagnosticOf([&] { cached(root, "Shared"); }));
    EXPECT_EQ("Korb:UnknownProperty", diagnosticOf([&] { cached(leaf, "Inherited"); }));
    EXPECT_EQ(2, cached(leaf, "Shared"));

    // A package that failed is added again with other members.
    Named again("LkAgain.Thing");
    auto thing = [](int value, bool fail) {
        return std::make_unique<Package>("LkAgain", [value, fail](ObjectSystem& s) {
            s.registerClass(ClassInfo::make("Thing", "thing",
                                            [value](ClassInfo& c) { c.property("Value", constant(value)); }));
            if (fail) throw std::runtime_error("registration failed");
        });
    };
    EXPECT_THROW(system.addPackage(thing(3, true)), std::runtime_error);
    EXPECT_EQ("Korb:UnknownClass", diagnosticOf([&] { readInt(client, again, "Value"); }));
    system.addPackage(thing(4, false));
    EXPECT_EQ(4, readInt(client, again, "Value"));
    EXPECT_EQ(4, cached(again, "Value"));
}

} // namespace
