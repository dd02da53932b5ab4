#include "Memory.h"

#include "Build.h"
#include "Environment.h"

#ifdef _WIN32
#include <windows.h>

#include <algorithm>
#include <array>
#else
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <string>
#endif

namespace support {

#ifdef _WIN32

namespace {

std::uint64_t availableKilobytes() {
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    return ::GlobalMemoryStatusEx(&status) != 0 ? status.ullAvailPhys / 1024 : 0;
}

std::uint64_t bytesIn(HANDLE heap) {
    std::uint64_t bytes = 0;
    PROCESS_HEAP_ENTRY entry = {};
    ::HeapLock(heap);
    while (::HeapWalk(heap, &entry) != 0) {
        bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    ::HeapUnlock(heap);
    return bytes;
}

} // namespace

std::uint64_t memoryInUse() {
    std::array<HANDLE, 64> heaps;
    const DWORD count = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    std::uint64_t bytes = 0;
    for (std::size_t index = 0; index < std::min<std::size_t>(count, heaps.size()); ++index) {
        bytes += bytesIn(heaps[index]);
    }
    return bytes;
}

std::uint64_t peakMemory() {
    return 0;
}

void resetPeakMemory() {}

#else

namespace {

/// The number of kilobytes after `name` in a file in /proc.
std::uint64_t kilobytesOf(const char* file, const std::string& wanted) {
    std::ifstream lines(file);
    std::string name;
    std::uint64_t kilobytes = 0;
    while (lines >> name) {
        if (name == wanted && lines >> kilobytes) {
            return kilobytes;
        }
        lines.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return 0;
}

/// The remaining memory of a container; the maximum number if there is no limit.
std::uint64_t kilobytesOfContainer() {
    std::uint64_t limit = 0;
    std::uint64_t used = 0;
    const bool limited = std::ifstream("/sys/fs/cgroup/memory.max") >> limit &&
                         std::ifstream("/sys/fs/cgroup/memory.current") >> used;
    return limited ? (limit - std::min(limit, used)) / 1024
                   : std::numeric_limits<std::uint64_t>::max();
}

std::uint64_t availableKilobytes() {
    return std::min(kilobytesOf("/proc/meminfo", "MemAvailable:"), kilobytesOfContainer());
}

} // namespace

std::uint64_t memoryInUse() {
    const struct mallinfo2 information = ::mallinfo2();
    return information.uordblks + information.hblkhd;
}

std::uint64_t peakMemory() {
    return kilobytesOf("/proc/self/status", "VmHWM:") * 1024;
}

void resetPeakMemory() {
    // Returns freed memory to the system, which would otherwise count. Other threads' arenas keep
    // theirs.
    ::mallopt(M_ARENA_MAX, 1);
    ::malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

#endif

bool hasMemory(unsigned int gigabytes) {
    return thorough() && !sanitized && availableKilobytes() / (1024 * 1024) > gigabytes;
}

} // namespace support
