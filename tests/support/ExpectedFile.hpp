#pragma once

// Compares a rendered result with the expected text checked in beside the
// test, so that a long listing is read and reviewed as a file of its own.
// With VELCG_UPDATE_EXPECTED set, the file is written instead and the test
// skipped.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "TempDir.hpp"

namespace testing_support {

// The file `name` beside the source file `file` (pass __FILE__, which is
// relative to the build directory when the compiler was given relative
// paths, as ccache's base_dir makes them).
inline std::filesystem::path besideSource(const char* file, const std::string& name) {
    std::filesystem::path path(file);
    if (path.is_relative()) path = std::filesystem::path(VELCG_COMPILE_DIR) / path;
    return path.replace_filename(name);
}

} // namespace testing_support

// `name` is the file beside `testFile` (pass __FILE__).
#define EXPECT_MATCHES_FILE(actual, testFile, name)                                                       \
    do {                                                                                                  \
        const auto expectedPath_ = testing_support::besideSource(testFile, name);                         \
        if (std::getenv("VELCG_UPDATE_EXPECTED")) {                                                       \
            std::ofstream(expectedPath_, std::ios::binary) << (actual);                                   \
            GTEST_SKIP() << "wrote " << expectedPath_;                                                    \
        }                                                                                                 \
        ASSERT_TRUE(std::filesystem::exists(expectedPath_)) << expectedPath_;                             \
        EXPECT_EQ(testing_support::fileBytes(expectedPath_), actual) << "differs from " << expectedPath_; \
    } while (false)
