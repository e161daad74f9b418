#include "vel/feature/Feature.hpp"

#include <cstdlib>
#include <gtest/gtest.h>

#include "vel/diag/Diagnostic.hpp"

namespace {

using vel::feature::Feature;

void setEnvironment(const char* name, const char* value) {
#if defined(_WIN32)
    _putenv_s(name, value);
#else
    if (*value)
        ::setenv(name, value, 1);
    else
        ::unsetenv(name);
#endif
}

TEST(Feature, ReadsAreCountedAndSetResetRestoreTheInitialValue) {
    Feature f("TestFeatureCounting", "counting", "Test[Unit]", 3);
    EXPECT_EQ(0u, f.readCount());
    EXPECT_EQ(3, f.value());
    EXPECT_EQ(3, static_cast<int>(f));
    EXPECT_EQ(2u, f.readCount());
    EXPECT_EQ(3, f.peek());
    EXPECT_EQ(2u, f.readCount()) << "peek does not count";
    f.set(-4);
    EXPECT_EQ(-4, f.value());
    {
        vel::feature::ScopedValue scoped(f, 9);
        EXPECT_EQ(9, f.value());
    }
    EXPECT_EQ(-4, f.value());
    f.reset();
    EXPECT_EQ(3, f.value());
    f.resetReadCount();
    EXPECT_EQ(0u, f.readCount());
}

TEST(Feature, RegistryFindsDeclaredFeaturesAndRefusesDuplicates) {
    {
        Feature f("TestFeatureRegistry", "desc", "Test[Unit]", 0, "tests/host");
        ASSERT_EQ(&f, vel::feature::Registry::find("TestFeatureRegistry"));
        EXPECT_EQ("tests/host", f.source());
        try {
            Feature dup("TestFeatureRegistry", "again", "Test[Unit]", 1);
            FAIL() << "duplicate accepted";
        } catch (const vel::diag::Exception& e) {
            EXPECT_EQ("Feature:Duplicate", e.identifier());
        }
        EXPECT_EQ(&f, vel::feature::Registry::find("TestFeatureRegistry"));
    }
    EXPECT_EQ(nullptr, vel::feature::Registry::find("TestFeatureRegistry")) << "destroyed features leave";
}

// Text that is no integer leaves the default in force and is refused by
// checkOverride, naming the variable and the text.
TEST(Feature, EnvironmentOverridesTheDefaultOnlyWithAnInteger) {
    struct Row {
        const char* env;
        int expected;
        bool refused;
    } rows[] = {{"7", 7, false}, {"-2", -2, false},        {"", 5, false}, {"x1", 5, true},
                {"3x", 5, true}, {"99999999999", 5, true}, {" ", 5, true}, {"abc", 5, true}};
    for (const auto& r : rows) {
        setEnvironment("VEL_FEATURE_TestFeatureEnv", r.env);
        Feature f("TestFeatureEnv", "env", "Test[Unit]", 5);
        EXPECT_EQ(r.expected, f.value()) << "'" << r.env << "'";
        EXPECT_EQ(5, f.defaultValue());
        if (r.refused) {
            try {
                f.checkOverride();
                ADD_FAILURE() << "'" << r.env << "' was not refused";
            } catch (const vel::diag::Exception& e) {
                EXPECT_EQ("Feature:InvalidOverride", e.identifier());
                EXPECT_NE(std::string::npos,
                          e.diagnostic().message().find("VEL_FEATURE_TestFeatureEnv holds '" +
                                                        std::string(r.env) + "'"));
            }
        } else {
            EXPECT_NO_THROW(f.checkOverride()) << "'" << r.env << "'";
        }
        f.set(100);
        f.reset();
        EXPECT_EQ(r.expected, f.value()) << "reset returns to the initial value";
    }
    setEnvironment("VEL_FEATURE_TestFeatureEnv", "");
}

} // namespace
