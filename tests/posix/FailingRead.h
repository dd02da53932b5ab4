#ifndef TESTS_POSIX_FAILINGREAD_H
#define TESTS_POSIX_FAILINGREAD_H

#include <cstddef>

namespace support {

/// During its lifetime, reads of this thread return a few bytes at a time, and the read after the
/// next `count` ones fails; later ones succeed again. Requires `FailingRead.cpp` in the program,
/// which intercepts the system's function `read`.
class FailingRead {
  public:
    /// The maximum that one read returns.
    static constexpr std::size_t step = 16;

    /// The outcome of the failing read: an error with this number, or the end of the file for 0.
    FailingRead(int count, int error);
    FailingRead(const FailingRead&) = delete;
    FailingRead& operator=(const FailingRead&) = delete;
    ~FailingRead();

    /// True once the read has failed.
    bool happened() const;

    /// True if a program started during one of the reads would have inherited the open file.
    bool wasInheritable() const;
};

/// During its lifetime, reads of this thread return as much as requested, up to the maximum of the
/// system, without writing any of it.
class EndlessRead {
  public:
    /// The maximum that one read returns.
    static constexpr std::size_t step = 0x7FFFF000;

    EndlessRead();
    EndlessRead(const EndlessRead&) = delete;
    EndlessRead& operator=(const EndlessRead&) = delete;
    ~EndlessRead();

    /// The number of bytes that the reads returned.
    std::size_t given() const;
};

} // namespace support

#endif
