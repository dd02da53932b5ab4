#include <tools/stencilor/system/Handle.h>
#include <tools/stencilor/system/System.h>
#include <tools/stencilor/system/TemporaryName.h>

namespace stencilor::system {

namespace {

/// Held while a temporary file exists.
SRWLOCK replacing = SRWLOCK_INIT;

/// Lets the program end only then. The system calls this in a thread of its own.
BOOL WINAPI waitForReplacement(DWORD) {
    ::AcquireSRWLockExclusive(&replacing);
    ::ReleaseSRWLockExclusive(&replacing);
    return FALSE;
}

/// Keeps Ctrl+C, and a console that is closed, from ending the program while a temporary file
/// exists; afterwards they do.
class InterruptsHeld {
  public:
    InterruptsHeld() {
        ::AcquireSRWLockExclusive(&replacing);
        ::SetConsoleCtrlHandler(waitForReplacement, TRUE);
    }
    InterruptsHeld(const InterruptsHeld&) = delete;
    InterruptsHeld& operator=(const InterruptsHeld&) = delete;
    ~InterruptsHeld() {
        // Released first: while a handler waits, the system does not let handlers be removed.
        ::ReleaseSRWLockExclusive(&replacing);
        ::SetConsoleCtrlHandler(waitForReplacement, FALSE);
    }
};

/// A file of a name that nothing else has, which is removed unless it takes another one's place.
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
    /// Sets `path` once the file is there.
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

/// Writes to the file where it is there and is a device or a pipe.
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

/// The path that a link, or a link to a link, leads to, be there a file or not.
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
        fail(ERROR_ACCESS_DENIED); // Replacing it may take no more than rights in its folder.
    }
    const InterruptsHeld held;
    TemporaryFile temporary(target.parent_path());
    temporary.write(content);
    temporary.replace(target);
}

} // namespace stencilor::system
