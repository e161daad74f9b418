#pragma once

// Compares a rendered result with the expected text checked in beside the
// test, so that a long listing is read and reviewed as a file of its own.
// With VELCG_UPDATE_EXPECTED set, the file is written instead and the test
// skipped.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "TempDir.hpp"

// `name` is the file beside `testFile` (pass __FILE__).
#define EXPECT_MATCHES_FILE(actual, testFile, name)                                                       \
    do {                                                                                                  \
        const auto expectedPath_ = std::filesystem::path(testFile).replace_filename(name);                \
        if (std::getenv("VELCG_UPDATE_EXPECTED")) {                                                       \
            std::ofstream(expectedPath_, std::ios::binary) << (actual);                                   \
            GTEST_SKIP() << "wrote " << expectedPath_;                                                    \
        }                                                                                                 \
        ASSERT_TRUE(std::filesystem::exists(expectedPath_)) << expectedPath_;                             \
        EXPECT_EQ(testing_support::fileBytes(expectedPath_), actual) << "differs from " << expectedPath_; \
    } while (false)
