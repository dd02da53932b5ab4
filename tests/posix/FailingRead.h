#ifndef TESTS_POSIX_FAILINGREAD_H
#define TESTS_POSIX_FAILINGREAD_H

#include <cstddef>

namespace support {

/// While it lives, reads of this thread give a few bytes at a time, and the read after the next
/// `count` ones does not succeed; the ones behind it do again. It needs `FailingRead.cpp` in the
/// program, which stands in front of the function `read` of the system.
class FailingRead {
  public:
    /// The most that one read gives.
    static constexpr std::size_t step = 16;

    /// What the read gives instead: an error with this number, or the end of the file for 0.
    FailingRead(int count, int error);
    FailingRead(const FailingRead&) = delete;
    FailingRead& operator=(const FailingRead&) = delete;
    ~FailingRead();

    /// True once the read has failed.
    bool happened() const;

    /// True if a program that was started during one of the reads would have had the file open,
    /// too.
    bool wasInheritable() const;
};

/// While it lives, reads of this thread give all that is asked for, as long as it is no more than
/// the system gives at a time, and write none of it.
class EndlessRead {
  public:
    /// The most that one read gives.
    static constexpr std::size_t step = 0x7FFFF000;

    EndlessRead();
    EndlessRead(const EndlessRead&) = delete;
    EndlessRead& operator=(const EndlessRead&) = delete;
    ~EndlessRead();

    /// How many bytes the reads gave.
    std::size_t given() const;
};

} // namespace support

#endif
