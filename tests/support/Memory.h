#ifndef TESTS_SUPPORT_MEMORY_H
#define TESTS_SUPPORT_MEMORY_H

#include <cstdint>

namespace support {

/// True for exhaustive tests, if this many gigabytes can be used without exhausting the machine's
/// memory. Always false with a sanitizer, which needs several times as much.
bool hasMemory(unsigned int gigabytes);

/// The number of bytes that this program has allocated and not freed. Zero with a sanitizer, which
/// reports leaks itself.
std::uint64_t memoryInUse();

/// The peak memory of this program since `resetPeakMemory`, in bytes. Zero if the system does not
/// report it.
std::uint64_t peakMemory();
void resetPeakMemory();

} // namespace support

#endif
