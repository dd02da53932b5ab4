#ifndef TESTS_WINDOWS_FAILINGIMPORT_H
#define TESTS_WINDOWS_FAILINGIMPORT_H

#include "ReplacedImport.h"

namespace support {

/// During its lifetime, makes `malloc` and `realloc` fail in a DLL of this program: after `allowed`
/// successful calls, all others return null. There can only be one at a time.
class FailingImport {
  public:
    FailingImport(const wchar_t* dll, int allowed);
    FailingImport(const FailingImport&) = delete;
    FailingImport& operator=(const FailingImport&) = delete;

    /// True if a call has failed.
    bool happened() const;

  private:
    ReplacedImport malloc_;
    ReplacedImport realloc_;
};

} // namespace support

#endif
