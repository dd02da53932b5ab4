#ifndef TESTS_SUPPORT_LOCKEDFILE_H
#define TESTS_SUPPORT_LOCKEDFILE_H

#include "Test.h"

#include <windows.h>

namespace support {

/// A file that is open exclusively for this process, which is only possible on Windows.
class LockedFile {
  public:
    explicit LockedFile(const std::filesystem::path& path)
        : file_(::CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {
        EXPECT_NE(file_, INVALID_HANDLE_VALUE);
    }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile() { ::CloseHandle(file_); }

  private:
    HANDLE file_;
};

} // namespace support

#endif
