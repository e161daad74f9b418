#include "vel/io/Stream.hpp"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vel::io {

std::FILE* openDuplicateForWriting(int fd) {
#ifdef _WIN32
    const int copy = _dup(fd);
    if (copy < 0) return nullptr;
    std::FILE* stream = _fdopen(copy, "wb");
    if (!stream) _close(copy);
#else
    const int copy = ::dup(fd);
    if (copy < 0) return nullptr;
    std::FILE* stream = ::fdopen(copy, "wb");
    if (!stream) ::close(copy);
#endif
    return stream;
}

bool isTerminal(std::FILE* stream) {
    if (!stream) return false;
#ifdef _WIN32
    return _isatty(_fileno(stream)) != 0;
#else
    return ::isatty(::fileno(stream)) != 0;
#endif
}

} // namespace vel::io
