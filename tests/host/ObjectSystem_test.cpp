#include "korb/ObjectSystem.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "PackageTesting.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/PackageInfo.hpp"

namespace {

using korb::ClassInfo;
using korb::ObjectSystem;
using testing_support::diagnosticOf;

using Package = testing_support::FunctionPackage;

std::unique_ptr<Package> twoClasses(const char* name) {
    return std::make_unique<Package>(name, [name](ObjectSystem& s) {
        s.registerClass(
            ClassInfo::make("Base", "the base", [](ClassInfo& c) { c.superclass(korb::kHeterogeneous); }));
        s.registerClass(ClassInfo::make("Derived", "the derived",
                                        [name](ClassInfo& c) { c.superclass(std::string(name) + ".Base"); }));
    });
}

// "Package.Class | description | superclass" per class, in registration order.
std::string classesOf(const ObjectSystem& system, const std::string& package) {
    std::string out;
    for (const auto* c : system.getPackageClasses(package))
        out += c->getQualifiedName() + " | " + c->getDescription() + " | " + c->getSuperclassName() +
               (c->isAbstract() ? " | abstract" : "") + "\n";
    return out;
}

TEST(ObjectSystem, StartsWithTheAbstractMixinClass) {
    ObjectSystem system;
    EXPECT_EQ(std::vector<std::string>{"plexo.mixin"}, system.getPackageNames());
    EXPECT_EQ("plexo.mixin.Heterogeneous | Mixin for heterogeneous arrays |  | abstract\n",
              classesOf(system, "plexo.mixin"));
}

TEST(ObjectSystem, KeepsPackagesAndClassesInRegistrationOrder) {
    ObjectSystem system;
    system.addPackage(twoClasses("Second"));
    system.addPackage(twoClasses("First"));
    EXPECT_EQ((std::vector<std::string>{"plexo.mixin", "Second", "First"}), system.getPackageNames());
    EXPECT_EQ(
        "First.Base | the base | plexo.mixin.Heterogeneous\n"
        "First.Derived | the derived | First.Base\n",
        classesOf(system, "First"));
    EXPECT_EQ(system.getPackageClasses("First").at(1), system.findClass("First.Derived"));
    EXPECT_EQ(nullptr, system.findClass("First.Nothing"));
    EXPECT_EQ(nullptr, system.findPackage("Third"));
    EXPECT_TRUE(system.getPackageClasses("Third").empty());
}

TEST(ObjectSystem, AFailingPackageLeavesTheRegistryUnchanged) {
    struct Row {
        const char* what;
        std::function<std::unique_ptr<korb::PackageInfo>()> package;
        const char* diagnostic;
    } rows[] = {
        {"known package name", [] { return twoClasses("Known"); }, "Korb:DuplicatePackage"},
        {"unknown superclass",
         [] {
             return std::make_unique<Package>("Orphan", [](ObjectSystem& s) {
                 s.registerClass(ClassInfo::make("A", "a", nullptr));
                 s.registerClass(ClassInfo::make("B", "b", [](ClassInfo& c) { c.superclass("Orphan.Z"); }));
             });
         },
         "Korb:UnknownSuperclass"},
        {"class registered twice",
         [] {
             return std::make_unique<Package>("Twice", [](ObjectSystem& s) {
                 s.registerClass(ClassInfo::make("A", "a", nullptr));
                 s.registerClass(ClassInfo::make("A", "again", nullptr));
             });
         },
         "Korb:DuplicateClass"},
    };
    for (const auto& r : rows) {
        ObjectSystem system;
        system.addPackage(twoClasses("Known"));
        const auto names = system.getPackageNames();
        const std::string known = classesOf(system, "Known");
        auto package = r.package();
        const std::string name = package->getName();
        EXPECT_EQ(r.diagnostic, diagnosticOf([&] { system.addPackage(std::move(package)); })) << r.what;
        EXPECT_EQ(names, system.getPackageNames()) << r.what;
        EXPECT_EQ(known, classesOf(system, "Known")) << r.what;
        if (name != "Known") {
            EXPECT_EQ(nullptr, system.findPackage(name)) << r.what;
            EXPECT_EQ("", classesOf(system, name)) << r.what;
            EXPECT_EQ(nullptr, system.findClass(name + ".A")) << r.what;
        }
    }
}

TEST(ObjectSystem, ClassesRegisterOnlyWhileTheirPackageIsAdded) {
    ObjectSystem system;
    EXPECT_EQ("Korb:NotRegistering",
              diagnosticOf([&] { system.registerClass(ClassInfo::make("Late", "late", nullptr)); }));
    EXPECT_EQ(nullptr, system.findClass(".Late"));
}

TEST(ObjectSystem, RemovedClassesAreGoneButThePackageStaysKnown) {
    ObjectSystem system;
    system.addPackage(twoClasses("Gone"));
    system.findPackage("Gone")->terminate(system.getPublicClient());
    EXPECT_NE(nullptr, system.findPackage("Gone"));
    EXPECT_EQ(nullptr, system.findClass("Gone.Base"));
    EXPECT_TRUE(system.getPackageClasses("Gone").empty());
    EXPECT_EQ("Korb:DuplicatePackage", diagnosticOf([&] { system.addPackage(twoClasses("Gone")); }));
}

} // namespace
