#ifndef TESTS_SUPPORT_FAILINGALLOCATION_H
#define TESTS_SUPPORT_FAILINGALLOCATION_H

#include <cstddef>

namespace support {

/// During its lifetime, the allocation after the next `count` ones of this thread fails; later ones
/// succeed again. Requires `FailingAllocation.cpp` in the program, which replaces the global
/// operator new and, except on Windows, `malloc`, `realloc` and `realpath`.
class FailingAllocation {
  public:
    explicit FailingAllocation(int count);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// True once the allocation has failed.
    bool happened() const;
};

/// Counts the allocations of this thread during its lifetime. Also requires
/// `FailingAllocation.cpp`.
class AllocatedMemory {
  public:
    AllocatedMemory();

    /// The peak of bytes in use. Zero on Windows and with a sanitizer.
    std::size_t most() const;
};

} // namespace support

#endif
