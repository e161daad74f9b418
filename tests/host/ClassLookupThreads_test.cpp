// Reads by name from several threads at once, each thread's first reads
// filling the client's remembered classes while the others use them.
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/mi/Handle.hpp"

namespace {

using korb::ClassInfo;
using korb::ObjectSystem;

class Package : public korb::PackageInfo {
public:
    const char* getName() const override { return "Lk"; }
    void registerClasses(ObjectSystem& s) override {
        for (int k = 0; k < 8; ++k)
            s.registerClass(ClassInfo::make("C" + std::to_string(k), "one of several", [k](ClassInfo& c) {
                c.property("Index", korb::getterFn<Named>([k](const Named&) { return k; }));
            }));
    }

    class Named : public vel::mi::Handle {
    public:
        explicit Named(std::string type) : type_(std::move(type)) {}
        const char* getFullyQualifiedKorbTypeName() const override { return type_.c_str(); }

    private:
        std::string type_;
    };
};

TEST(ClassLookup, ReadsFromSeveralThreadsAgree) {
    ObjectSystem system;
    system.addPackage(std::make_unique<Package>());
    const korb::Client& client = system.getPublicClient();
    // Handles are referenced on the host's thread; the references are then
    // shared.
    std::vector<std::unique_ptr<Package::Named>> objects;
    std::vector<vel::mi::HandleRef> refs;
    for (int k = 0; k < 8; ++k) {
        objects.push_back(std::make_unique<Package::Named>("Lk.C" + std::to_string(k)));
        refs.push_back(objects.back()->makeRef());
    }
    std::vector<int> wrong(4, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                const int k = (i + t) % 8;
                if (client.getProperty(refs[k], "Index")->int32Value() != k) ++wrong[t];
            }
        });
    for (auto& th : threads) th.join();
    EXPECT_EQ(std::vector<int>(4, 0), wrong);
}

} // namespace
