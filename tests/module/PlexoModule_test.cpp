#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "korb/ObjectSystem.hpp"
#include "korb/PackageInfo.hpp"
#include "vel/feature/Feature.hpp"
#include "velcg/PlexoModule.hpp"

namespace {

// The library is loaded once for the whole test program, as a host would.
#if defined(_WIN32)
void* library() {
    static HMODULE handle = LoadLibraryA(VELCG_LIBRARY_PATH);
    return handle;
}

template <class Fn>
Fn entryPoint(const char* name) {
    return reinterpret_cast<Fn>(GetProcAddress(static_cast<HMODULE>(library()), name));
}

std::string loadError() { return "LoadLibrary failed with error " + std::to_string(GetLastError()); }
#else
void* library() {
    static void* handle = dlopen(VELCG_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    return handle;
}

template <class Fn>
Fn entryPoint(const char* name) {
    return reinterpret_cast<Fn>(dlsym(library(), name));
}

std::string loadError() {
    const char* e = dlerror();
    return e ? e : "unknown error";
}
#endif

std::size_t packagesNamed(const char* name) {
    auto names = korb::ObjectSystem::instance().getPackageNames();
    return static_cast<std::size_t>(std::count(names.begin(), names.end(), name));
}

TEST(PlexoModule, LoadingDeclaresTheLibraryFeatureSwitches) {
    ASSERT_NE(nullptr, library()) << loadError();
    struct Row {
        const char* name;
        const char* description;
        const char* group;
        int defaultValue;
    } rows[] = {
        {"VelCGDirectEmitSerialize", "Serialize Direct Emit to Strata", "VelCG[Infrastructure]", 1},
        {"CoderDataGroups", "Enable coder data groups", "Corvid[Customization]", 1},
        {"CoderDataGroupTesting", "Feature to enable prototyping coder data groups for models and subsystems",
         "Corvid[Customization]", 0},
    };
    for (const auto& r : rows) {
        vel::feature::Feature* f = vel::feature::Registry::find(r.name);
        ASSERT_NE(nullptr, f) << r.name;
        EXPECT_EQ(r.description, f->description());
        EXPECT_EQ(r.group, f->group());
        EXPECT_EQ(r.defaultValue, f->defaultValue());
    }
}

TEST(PlexoModule, EntryPointsResolveByPlainNamesAndEachRunsOnce) {
    ASSERT_NE(nullptr, library()) << loadError();
    auto init = entryPoint<void (*)()>("PlexoInitialize_velcg");
    auto term = entryPoint<void (*)()>("PlexoTerminate_velcg");
    auto query = entryPoint<const PlexoFcnTable* (*)()>("QueryPlexoFcnTable_velcg");
    ASSERT_NE(nullptr, init);
    ASSERT_NE(nullptr, term);
    ASSERT_NE(nullptr, query);

    const PlexoFcnTable* table = query();
    ASSERT_NE(nullptr, table);
    EXPECT_EQ(table, query()) << "the table is one static record";
    EXPECT_EQ(sizeof(PlexoFcnTable), table->structSize);
    EXPECT_STREQ("VelCG", table->packageName);
    EXPECT_EQ(init, table->initialize);
    EXPECT_EQ(term, table->terminate);

    auto& system = korb::ObjectSystem::instance();
    EXPECT_EQ(0u, packagesNamed("VelCG"));
    init();
    init();
    EXPECT_EQ(1u, packagesNamed("VelCG"));
    std::size_t classes = system.getPackageClasses("VelCG").size();
    EXPECT_EQ(25u, classes);

    term();
    EXPECT_TRUE(system.getPackageClasses("VelCG").empty()) << "termination removes the classes";
    EXPECT_EQ(nullptr, system.findClass("VelCG.CGModel"));
    term();
    init();
    EXPECT_EQ(1u, packagesNamed("VelCG"));
    EXPECT_TRUE(system.getPackageClasses("VelCG").empty()) << "no re-initialisation after termination";
}

// A package that holds the library's package name before the library registers its own.
class NameSquatter final : public korb::PackageInfo {
public:
    const char* getName() const override { return "VelCG"; }
    void registerClasses(korb::ObjectSystem&) override {}
};

// Runs in a fresh process: the package name is taken there before the first
// initialisation, which must then fail without throwing and stay retryable.
TEST(PlexoModuleDeathTest, AFailedInitializationIsReportedNotThrownAndTriedAgain) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            ASSERT_NE(nullptr, library()) << loadError();
            auto init = entryPoint<void (*)()>("PlexoInitialize_velcg");
            korb::ObjectSystem::instance().addPackage(std::make_unique<NameSquatter>());
            init();
            init();
            std::exit(korb::ObjectSystem::instance().findClass("VelCG.CGModel") ? 3 : 0);
        },
        ::testing::ExitedWithCode(0),
        // Reported by the default reporter on each call: the failure did not
        // mark the entry point as done.
        "warning: Korb:DuplicatePackage: .*\nwarning: Korb:DuplicatePackage: ");
}

} // namespace
