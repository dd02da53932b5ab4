#ifndef TESTS_SUPPORT_MEMORY_H
#define TESTS_SUPPORT_MEMORY_H

namespace support {

/// True where this many gigabytes can be used without driving the machine out of memory. Under a
/// sanitizer there is never enough: it needs several times as much.
bool hasMemory(unsigned int gigabytes);

} // namespace support

#endif
