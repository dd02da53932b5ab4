#ifndef TESTS_SUPPORT_FAILINGALLOCATION_H
#define TESTS_SUPPORT_FAILINGALLOCATION_H

#include <cstddef>

namespace support {

/// While it lives, the allocation after the next `count` ones of this thread fails; the ones behind
/// it succeed again. It needs `FailingAllocation.cpp` in the program, which replaces the global
/// operator new, and but for Windows `malloc`, `realloc` and `realpath`.
class FailingAllocation {
  public:
    explicit FailingAllocation(int count);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// True once the allocation has failed.
    bool happened() const;
};

/// Counts what this thread allocates from the moment it is made. It needs `FailingAllocation.cpp`,
/// too.
class AllocatedMemory {
  public:
    AllocatedMemory();

    /// The most bytes that were in use at a time. Zero on Windows and under a sanitizer.
    std::size_t most() const;
};

} // namespace support

#endif
