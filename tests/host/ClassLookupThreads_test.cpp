// Reads by name from several threads at once, each thread's first reads
// filling the client's remembered classes while the others use them.
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "PackageTesting.hpp"
#include "korb/ClassInfo.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/mi/Handle.hpp"

namespace {

using korb::ClassInfo;
using korb::ObjectSystem;

using Named = testing_support::NamedObject;

// Eight classes "Lk.C0" to "Lk.C7", each answering "Index" with its number.
std::unique_ptr<korb::PackageInfo> eightClasses() {
    return std::make_unique<testing_support::FunctionPackage>("Lk", [](ObjectSystem& s) {
        for (int k = 0; k < 8; ++k)
            s.registerClass(ClassInfo::make("C" + std::to_string(k), "one of several", [k](ClassInfo& c) {
                c.property("Index", korb::getterFn<Named>([k](const Named&) { return k; }));
            }));
    });
}

TEST(ClassLookup, ReadsFromSeveralThreadsAgree) {
    ObjectSystem system;
    system.addPackage(eightClasses());
    const korb::Client& client = system.getPublicClient();
    // Handles are referenced on the host's thread; the references are then
    // shared.
    std::vector<std::unique_ptr<Named>> objects;
    std::vector<vel::mi::HandleRef> refs;
    for (int k = 0; k < 8; ++k) {
        objects.push_back(std::make_unique<Named>("Lk.C" + std::to_string(k)));
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
