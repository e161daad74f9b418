#pragma once

// A code descriptor store as its text dump reads, and the expected dumps of
// a golden file whose lines each start with the switch levels that write
// them ("1234", " 2 4", ...) and a '|'; lines starting with '#' are comments.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "coder/Repository.hpp"
#include "coder/descriptor/Dump.hpp"

namespace testing_support {

inline std::string dumpOf(const std::filesystem::path& store) {
    coder::Repository repository(store, {coder::RepositoryOptions::Access::ReadOnly});
    return coder::descriptor::dumpText(repository);
}

// The lines of the golden file that level writes, without their levels.
inline std::string expectedDump(const std::filesystem::path& golden, int level) {
    std::ifstream in(golden);
    EXPECT_TRUE(in.good()) << golden;
    std::string out;
    for (std::string line; std::getline(in, line);) {
        const std::size_t bar = line.find('|');
        if (line.rfind('#', 0) != 0 && bar != std::string::npos &&
            line.find(static_cast<char>('0' + level)) < bar)
            out += line.substr(bar + 1) + "\n";
    }
    return out;
}

} // namespace testing_support
