#pragma once

#include <cstdint>

namespace coder {

// How a Repository opens its file.
struct RepositoryOptions {
    enum class Access {
        ReadWrite, // creates the file when it is absent
        ReadOnly,  // the file must exist; nothing is ever written
    };
    Access access = Access::ReadWrite;
    // How long beginTransaction waits for another connection's write lock
    // (and a read for a commit in progress) before "coder:Repository:Busy".
    int busyTimeoutMs = 5000;
    // Upper bound on the file's size in pages; 0 keeps SQLite's default.
    // Writes past it fail with "coder:Repository:Full", which makes a full
    // disk reproducible.
    std::uint64_t maxPageCount = 0;
};

} // namespace coder
