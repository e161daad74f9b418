#pragma once

#include <cstdio>

#include "vel/HostExport.hpp"

namespace vel::io {

// A C stream that writes to a duplicate of the open file descriptor fd, so
// that a runtime holding fd (a script's file object) can hand it to code that
// writes to C streams. Closing the stream closes only the duplicate; both
// share one file position. Null on failure, with errno set.
VELHOST_API std::FILE* openDuplicateForWriting(int fd);

// True when the stream writes to a terminal (progress output is for people,
// not for files or pipes).
VELHOST_API bool isTerminal(std::FILE* stream);

} // namespace vel::io
