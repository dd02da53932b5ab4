#ifndef TESTS_SUPPORT_MEMORY_H
#define TESTS_SUPPORT_MEMORY_H

#include <cstdint>

namespace support {

/// True where tests are to be thorough and this many gigabytes can be used without driving the
/// machine out of memory. Under a sanitizer there is never enough: it needs several times as much.
bool hasMemory(unsigned int gigabytes);

/// How many bytes of memory this program has allocated and not freed. Zero under a sanitizer, which
/// tells of what is not freed itself.
std::uint64_t memoryInUse();

/// The most memory that this program has occupied since `resetPeakMemory`, in bytes. Zero where the
/// system tells no such thing.
std::uint64_t peakMemory();
void resetPeakMemory();

} // namespace support

#endif
