#ifndef TESTS_WINDOWS_FAILINGIMPORT_H
#define TESTS_WINDOWS_FAILINGIMPORT_H

#include "ReplacedImport.h"

namespace support {

/// Lets `malloc` and `realloc` fail, as long as it lives, where a DLL that was loaded by this
/// program calls them: after `allowed` calls that succeed, all others return null. One at a time.
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
