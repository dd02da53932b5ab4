#ifndef TESTS_WINDOWS_FAILINGCALL_H
#define TESTS_WINDOWS_FAILINGCALL_H

#include "ReplacedImport.h"

#include <cstddef>
#include <list>
#include <string_view>

namespace support {

/// During its lifetime, one call of the base library for a file fails: of the calls of `function`,
/// the one after the next `count` ones. Later ones succeed again. A read returns a few bytes at a
/// time. There can only be one object at a time.
class FailingCall {
  public:
    /// The maximum that one read returns.
    static constexpr std::size_t step = 16;

    /// Instead of a function: the next `count` calls of `ReadFile` succeed, then the file ends.
    static constexpr std::string_view end = "the end of the file";

    FailingCall(std::string_view function, int count);
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    /// True once the call has failed.
    bool happened() const;

    /// The number of files and folders opened since then and not yet closed.
    int openHandles() const;

  private:
    std::list<ReplacedImport> replaced_;
};

} // namespace support

#endif
