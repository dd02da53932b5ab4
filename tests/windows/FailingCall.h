#ifndef TESTS_WINDOWS_FAILINGCALL_H
#define TESTS_WINDOWS_FAILINGCALL_H

#include "ReplacedImport.h"

#include <cstddef>
#include <list>
#include <string_view>

namespace support {

/// While it lives, one call of the base library for a file does not succeed: of the calls of
/// `function`, the one after the next `count` ones. The ones behind it do again. A read gives a few
/// bytes at a time. One object at a time.
class FailingCall {
  public:
    /// The most that one read gives.
    static constexpr std::size_t step = 16;

    /// In place of a function: the next `count` calls of `ReadFile` read, then the file is at its
    /// end.
    static constexpr std::string_view end = "the end of the file";

    FailingCall(std::string_view function, int count);
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    /// True once the call has failed.
    bool happened() const;

    /// How many files and folders were opened since and not closed yet.
    int openHandles() const;

  private:
    std::list<ReplacedImport> replaced_;
};

} // namespace support

#endif
