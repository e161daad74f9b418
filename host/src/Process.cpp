#include "vel/sys/Process.hpp"

#include <cstdio>

#ifdef _WIN32
#include <windows.h>
// windows.h first: psapi.h needs its types.
#include <psapi.h>
#else
#include <unistd.h>
#endif

namespace vel::sys {

std::uint64_t residentBytes() {
#if defined(_WIN32)
    PROCESS_MEMORY_COUNTERS counters;
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return 0;
    return counters.WorkingSetSize;
#elif defined(__linux__)
    std::FILE* file = std::fopen("/proc/self/statm", "r");
    if (!file) return 0;
    unsigned long long size = 0;
    unsigned long long resident = 0;
    const int read = std::fscanf(file, "%llu %llu", &size, &resident);
    std::fclose(file);
    const long page = ::sysconf(_SC_PAGESIZE);
    return read == 2 && page > 0 ? resident * static_cast<std::uint64_t>(page) : 0;
#else
    return 0;
#endif
}

} // namespace vel::sys
