#include "vel/sys/DirectoryLock.hpp"

#include <cerrno>
#include <cstring>
#include <string>

#include "vel/diag/Diagnostic.hpp"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace vel::sys {

namespace {

[[noreturn]] void cannotLock(const std::filesystem::path& directory, const std::string& reason) {
    diag::throwErrorText("vel:sys:CannotLock",
                         "Cannot lock the directory '" + directory.string() + "': " + reason + ".");
}

} // namespace

#if defined(_WIN32)

DirectoryLock::DirectoryLock(const std::filesystem::path& directory, Wait wait) {
    const std::wstring file = (directory / ".lock").wstring();
    for (;;) {
        // No sharing: a second opener fails until the holder closes it.
        HANDLE h = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                               FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (h != INVALID_HANDLE_VALUE) {
            handle_ = h;
            locked_ = true;
            return;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED)
            cannotLock(directory, "system error " + std::to_string(error));
        if (wait == Wait::No) return;
        Sleep(50);
    }
}

DirectoryLock::~DirectoryLock() {
    if (handle_) CloseHandle(static_cast<HANDLE>(handle_));
}

#else

DirectoryLock::DirectoryLock(const std::filesystem::path& directory, Wait wait) {
    fd_ = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd_ < 0) cannotLock(directory, std::strerror(errno));
    int result;
    do {
        result = ::flock(fd_, LOCK_EX | (wait == Wait::No ? LOCK_NB : 0));
    } while (result != 0 && errno == EINTR);
    if (result == 0) {
        locked_ = true;
        return;
    }
    const int error = errno;
    ::close(fd_);
    fd_ = -1;
    if (error != EWOULDBLOCK) cannotLock(directory, std::strerror(error));
}

DirectoryLock::~DirectoryLock() {
    if (fd_ >= 0) ::close(fd_);
}

#endif

} // namespace vel::sys
