#include "Memory.h"

#include "Build.h"

#include <cstdint>

#ifdef _WIN32
#include <windows.h>
#else
#include <fstream>
#include <limits>
#include <string>
#endif

namespace support {

namespace {

std::uint64_t availableKilobytes() {
#ifdef _WIN32
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    return ::GlobalMemoryStatusEx(&status) != 0 ? status.ullAvailPhys / 1024 : 0;
#else
    std::ifstream memory("/proc/meminfo");
    std::string name;
    std::uint64_t kilobytes = 0;
    while (memory >> name >> kilobytes) {
        if (name == "MemAvailable:") {
            return kilobytes;
        }
        memory.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return 0;
#endif
}

} // namespace

bool hasMemory(unsigned int gigabytes) {
    return !sanitized && availableKilobytes() / (1024 * 1024) > gigabytes;
}

} // namespace support
