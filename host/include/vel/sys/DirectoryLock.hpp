#pragma once

#include <filesystem>

#include "vel/HostExport.hpp"

namespace vel::sys {

// An exclusive lock on a directory among the processes that take it, held
// for the life of the object. The system releases it when the process ends
// in any way, so a killed holder never leaves it stuck. No file is created
// on POSIX systems (the directory itself is locked); on Windows the lock is
// a file ".lock" inside the directory, deleted when its holder closes it.
class VELHOST_API DirectoryLock {
public:
    enum class Wait { No, Yes };

    // Takes the lock on `directory`, which must exist. With Wait::No,
    // returns an unlocked object when another holder has it (see locked()).
    // Raises "vel:sys:CannotLock" when the directory cannot be opened or
    // locked for any other reason.
    DirectoryLock(const std::filesystem::path& directory, Wait wait);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

    bool locked() const { return locked_; }

private:
    bool locked_ = false;
#if defined(_WIN32)
    void* handle_ = nullptr;
#else
    int fd_ = -1;
#endif
};

} // namespace vel::sys
