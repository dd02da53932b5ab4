#include <tools/stencilor/system/Handle.h>
#include <tools/stencilor/system/System.h>
#include <tools/stencilor/system/TemporaryName.h>

namespace stencilor::system {

namespace {

/// Held while a temporary file exists.
SRWLOCK replacing = SRWLOCK_INIT;

/// Lets the program end only afterwards. The system calls this in a separate thread.
BOOL WINAPI waitForReplacement(DWORD) {
    ::AcquireSRWLockExclusive(&replacing);
    ::ReleaseSRWLockExclusive(&replacing);
    return FALSE;
}

/// Delays the end of the program by Ctrl+C, or by closing the console, while a temporary file
/// exists.
class InterruptsHeld {
  public:
    InterruptsHeld() {
        ::AcquireSRWLockExclusive(&replacing);
        ::SetConsoleCtrlHandler(waitForReplacement, TRUE);
    }
    InterruptsHeld(const InterruptsHeld&) = delete;
    InterruptsHeld& operator=(const InterruptsHeld&) = delete;
    ~InterruptsHeld() {
        // Released first, because the system does not remove handlers while one is waiting.
        ::ReleaseSRWLockExclusive(&replacing);
        ::SetConsoleCtrlHandler(waitForReplacement, FALSE);
    }
};

/// A file with a unique name, which is removed unless it replaces another one.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::filesystem::path& folder) : file_(create(folder, path_)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        file_.close();
        if (!path_.empty()) {
            ::DeleteFileW(path_.c_str());
        }
    }

    void write(std::string_view content) {
        writeAll(file_.get(), content);
        if (::FlushFileBuffers(file_.get()) == 0) {
            fail();
        }
        file_.close();
    }

    void replace(const std::filesystem::path& path) {
        if (::MoveFileExW(path_.c_str(), path.c_str(),
                          MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
            fail();
        }
        path_.clear();
    }

  private:
    /// Sets `path` once the file exists.
    static HANDLE create(const std::filesystem::path& folder, std::filesystem::path& path) {
        for (int attempt = 1;; ++attempt) {
            const std::filesystem::path candidate = folder / temporaryName();
            const HANDLE file = ::CreateFileW(candidate.c_str(), GENERIC_WRITE, 0, nullptr,
                                              CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
            if (file != INVALID_HANDLE_VALUE) {
                path = candidate;
                return file;
            }
            if (::GetLastError() != ERROR_FILE_EXISTS || attempt == mostTemporaryNames) {
                fail();
            }
        }
    }

    std::filesystem::path path_;
    Handle file_;
};

/// Writes to the file if it is an existing device or pipe.
bool writeToDevice(const std::filesystem::path& path, std::string_view content) {
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_FILE_NOT_FOUND) {
            return false;
        }
        fail(error);
    }
    const Handle device(file);
    if (::GetFileType(file) == FILE_TYPE_DISK) {
        return false;
    }
    writeAll(file, content);
    return true;
}

bool isReadOnly(const std::filesystem::path& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

/// The target of a link, or of a chain of links, whether or not it exists.
std::filesystem::path followLinks(std::filesystem::path path) {
    for (int links = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(path));
         ++links) {
        if (links == 40) {
            fail(ERROR_CANT_RESOLVE_FILENAME);
        }
        path = path.parent_path() / std::filesystem::read_symlink(path);
    }
    return path;
}

} // namespace

void writeFile(const std::string& path, std::string_view content) {
    const std::filesystem::path wide = widePath(path);
    if (writeToDevice(wide, content)) {
        return;
    }
    const std::filesystem::path target = followLinks(wide);
    if (isReadOnly(target)) {
        fail(ERROR_ACCESS_DENIED); // Replacing it may require only rights to its folder.
    }
    const InterruptsHeld held;
    TemporaryFile temporary(target.parent_path());
    temporary.write(content);
    temporary.replace(target);
}

} // namespace stencilor::system
