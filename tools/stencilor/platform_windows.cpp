#include <libKel/String.h>

#include <tools/stencilor/platform.h>
#include <tools/stencilor/temporary_name.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

namespace stencilor::platform {

namespace {

[[noreturn]] void fail(DWORD error = ::GetLastError()) {
    throw std::system_error(static_cast<int>(error), std::system_category());
}

/// The path to hand to the system. Long ones take the form that has no limit of 260 characters;
/// where the manifest alone lifts it depends on the settings of the machine.
std::filesystem::path widePath(const std::string& path) {
    const std::filesystem::path wide = kel::String(std::string_view(path)).toWide();
    // The limit is lower for folders, and for the names of temporary files something is added.
    if (wide.native().size() < MAX_PATH / 2 || wide.native().starts_with(LR"(\\?\)") ||
        wide.native().starts_with(LR"(\\.\)")) {
        return wide;
    }
    const std::wstring absolute = std::filesystem::absolute(wide).make_preferred().native();
    if (absolute.starts_with(LR"(\\)")) {
        return LR"(\\?\UNC)" + absolute.substr(1);
    }
    return LR"(\\?\)" + absolute;
}

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {
        if (handle_ == INVALID_HANDLE_VALUE) {
            fail();
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { close(); }

    HANDLE get() const { return handle_; }

    void close() {
        if (handle_ != INVALID_HANDLE_VALUE) {
            ::CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
        }
    }

  private:
    HANDLE handle_;
};

/// The size of a file on a disk; 0 for others, whose size is known only at their end.
std::uint64_t sizeOf(HANDLE file) {
    LARGE_INTEGER size = {};
    if (::GetFileType(file) == FILE_TYPE_DISK && ::GetFileSizeEx(file, &size) == 0) {
        fail();
    }
    return static_cast<std::uint64_t>(size.QuadPart);
}

std::string readAll(HANDLE file) {
    std::string content;
    std::string block(std::size_t{256} * 1024, '\0');
    bool tooLarge = sizeOf(file) > longestText;
    while (!tooLarge) {
        DWORD count = 0;
        if (::ReadFile(file, block.data(), static_cast<DWORD>(block.size()), &count, nullptr) ==
            0) {
            // A pipe whose writer is gone has no end of its own.
            if (::GetLastError() == ERROR_BROKEN_PIPE) {
                return content;
            }
            fail();
        }
        if (count == 0) {
            return content;
        }
        content.append(block, 0, count);
        tooLarge = content.size() > longestText;
    }
    throw std::system_error(std::make_error_code(std::errc::file_too_large));
}

void writeAll(HANDLE file, std::string_view text) {
    constexpr std::size_t step = 1u << 30;
    while (!text.empty()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(text.size(), step));
        if (::WriteFile(file, text.data(), wanted, &count, nullptr) == 0) {
            fail();
        }
        text.remove_prefix(count);
    }
}

/// Writes to a console in its own characters; as bytes the text would be read in its code page.
void writeConsole(HANDLE console, std::string_view text) {
    constexpr std::size_t step = 8192;
    const std::wstring wide = kel::String(text).toWide();
    std::wstring_view rest = wide;
    while (!rest.empty()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(rest.size(), step));
        if (::WriteConsoleW(console, rest.data(), wanted, &count, nullptr) == 0) {
            fail();
        }
        rest.remove_prefix(count);
    }
}

void writeStandard(DWORD which, std::string_view text) {
    const HANDLE stream = ::GetStdHandle(which);
    DWORD mode = 0;
    if (::GetConsoleMode(stream, &mode) != 0) {
        writeConsole(stream, text);
    } else {
        writeAll(stream, text);
    }
}

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
        ::SetConsoleCtrlHandler(waitForReplacement, FALSE);
        ::ReleaseSRWLockExclusive(&replacing);
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

std::vector<std::string> start(int, char**) {
    int count = 0;
    wchar_t** const arguments = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (arguments == nullptr) {
        fail();
    }
    std::vector<std::string> result;
    for (int i = 1; i < count; ++i) {
        result.push_back(kel::String::fromWide(arguments[i]).str());
    }
    ::LocalFree(arguments);
    return result;
}

std::string readFile(const std::string& path) {
    const Handle file(::CreateFileW(widePath(path).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return readAll(file.get());
}

std::string readStandardInput() {
    return readAll(::GetStdHandle(STD_INPUT_HANDLE));
}

void writeStandardOutput(std::string_view text) {
    writeStandard(STD_OUTPUT_HANDLE, text);
}

void writeStandardError(std::string_view text) noexcept {
    try {
        writeStandard(STD_ERROR_HANDLE, text);
    } catch (const std::system_error&) {
    } catch (const std::bad_alloc&) {
    }
}

std::string folderOf(const std::string& path) {
    const std::filesystem::path folder = widePath(path).parent_path();
    return folder.empty() ? "." : kel::String::fromWide(folder.native()).str();
}

std::string identityOf(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path canonical = std::filesystem::canonical(widePath(path), failure);
    return failure ? path : kel::String::fromWide(canonical.native()).str();
}

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

} // namespace stencilor::platform
