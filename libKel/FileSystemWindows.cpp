#include <libKel/FileSystem.h>
#include <libKel/RootedPath.h>
#include <libKel/Utf8.h>

#include <windows.h>

#include <algorithm>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace kel {

namespace {

constexpr std::uint64_t longestFile = std::numeric_limits<std::uint32_t>::max();

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (isOpen()) {
            ::CloseHandle(handle_);
        }
    }

    bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

  private:
    HANDLE handle_;
};

/// Opens a file or a directory for `access`; 0 asks for what is told of it and no more.
HANDLE open(const std::wstring& path, DWORD access) {
    return ::CreateFileW(path.c_str(), access,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

struct Root {
    std::mutex mutex;
    std::optional<std::wstring> directory; // as the system names it
};

Root& root() {
    static Root instance;
    return instance;
}

std::optional<std::wstring> rootDirectory() {
    const std::lock_guard lock(root().mutex);
    return root().directory;
}

/// Asks a function of Windows for a text whose length is not known beforehand.
template <typename Function>
std::optional<std::wstring> askForText(Function function) {
    std::wstring text(MAX_PATH, L'\0');
    while (true) {
        const DWORD length = function(text.data(), static_cast<DWORD>(text.size()));
        if (length == 0) {
            return std::nullopt;
        }
        const bool fits = length < text.size();
        text.resize(fits ? length : length + 1);
        if (fits) {
            return text;
        }
    }
}

/// The absolute path in the form that may be longer than 260 characters. Devices keep their form
/// (`\\.\NUL`).
std::optional<std::wstring> absolutePath(const std::wstring& path) {
    std::optional<std::wstring> absolute = askForText([&path](wchar_t* to, DWORD size) {
        return ::GetFullPathNameW(path.c_str(), size, to, nullptr);
    });
    if (!absolute || absolute->starts_with(L"\\\\?\\") || absolute->starts_with(L"\\\\.\\")) {
        return absolute;
    }
    if (absolute->starts_with(L"\\\\")) {
        return L"\\\\?\\UNC" + absolute->substr(1);
    }
    return L"\\\\?\\" + *absolute;
}

/// The path of an open file as the system names it: without links, in its own case.
std::optional<std::wstring> finalPath(HANDLE handle) {
    return askForText([handle](wchar_t* to, DWORD size) {
        return ::GetFinalPathNameByHandleW(handle, to, size, FILE_NAME_NORMALIZED);
    });
}

bool isInside(const std::wstring& path, const std::wstring& directory) {
    const std::wstring start = directory.ends_with(L'\\') ? directory : directory + L'\\';
    return path.size() > start.size() &&
           ::CompareStringOrdinal(path.data(), static_cast<int>(start.size()), start.data(),
                                  static_cast<int>(start.size()), TRUE) == CSTR_EQUAL;
}

std::optional<std::wstring> widePath(const String& path) {
    const std::string_view text = path.view();
    if (text.empty() || text.find('\0') != std::string_view::npos ||
        validUtf8Prefix(text) != text.size()) {
        return std::nullopt;
    }
    return path.toWide();
}

/// The path to hand to the system for `path`, or nothing where it names nothing.
std::optional<std::wstring> systemPath(const String& path,
                                       const std::optional<std::wstring>& directory) {
    std::optional<std::wstring> wanted = widePath(path);
    if (!wanted) {
        return std::nullopt;
    }
    if (!directory) {
        return absolutePath(*wanted);
    }
    if (!isPortableRelativePath(path.view())) {
        return std::nullopt;
    }
    std::replace(wanted->begin(), wanted->end(), L'/', L'\\');
    return absolutePath(*directory + L'\\' + *wanted);
}

/// Opens the file that `path` names, where it is a regular file that may be reached. Where the path
/// leads is asked of the open file, so that no link can lead it elsewhere afterwards.
HANDLE openRegularFile(const String& path, DWORD access) {
    const std::optional<std::wstring> directory = rootDirectory();
    const std::optional<std::wstring> resolved = systemPath(path, directory);
    if (!resolved) {
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE file = open(*resolved, access);
    if (file == INVALID_HANDLE_VALUE) {
        return file;
    }
    BY_HANDLE_FILE_INFORMATION information;
    bool reachable = ::GetFileType(file) == FILE_TYPE_DISK &&
                     ::GetFileInformationByHandle(file, &information) != 0 &&
                     (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    if (reachable && directory) {
        const std::optional<std::wstring> reached = finalPath(file);
        reachable = reached && isInside(*reached, *directory);
    }
    if (!reachable) {
        ::CloseHandle(file);
        return INVALID_HANDLE_VALUE;
    }
    return file;
}

/// Reads `size` bytes into `out`, which has room for them. A file that became shorter gives fewer.
bool readBytes(HANDLE file, std::uint64_t size, Buffer<unsigned char>& out) {
    constexpr std::uint64_t step = 1u << 30;
    while (out.size < size) {
        const auto wanted = static_cast<DWORD>(std::min(size - out.size, step));
        DWORD count = 0;
        if (::ReadFile(file, out.data + out.size, wanted, &count, nullptr) == 0) {
            return false;
        }
        if (count == 0) {
            return true;
        }
        out.size += count;
    }
    return true;
}

} // namespace

bool FileSystem::exists(const String& path) {
    return Handle(openRegularFile(path, 0)).isOpen();
}

bool FileSystem::loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length) {
    out.release();
    if (length != nullptr) {
        *length = 0;
    }
    const Handle file(openRegularFile(path, GENERIC_READ));
    LARGE_INTEGER size;
    if (!file.isOpen() || ::GetFileSizeEx(file.get(), &size) == 0 ||
        static_cast<std::uint64_t>(size.QuadPart) > longestFile) {
        return false;
    }
    if (size.QuadPart > 0) {
        const auto capacity = static_cast<std::uint64_t>(size.QuadPart);
        out.data = static_cast<unsigned char*>(::operator new(capacity));
        out.capacity = capacity;
    }
    if (!readBytes(file.get(), out.capacity, out)) {
        out.release();
        return false;
    }
    if (length != nullptr) {
        *length = static_cast<unsigned long>(out.size);
    }
    return true;
}

bool FileSystem::setRoot(const String& directory) {
    const std::optional<std::wstring> wanted = widePath(directory);
    const std::optional<std::wstring> absolute = wanted ? absolutePath(*wanted) : std::nullopt;
    if (!absolute) {
        return false;
    }
    const Handle opened(open(*absolute, 0));
    BY_HANDLE_FILE_INFORMATION information;
    if (!opened.isOpen() || ::GetFileInformationByHandle(opened.get(), &information) == 0 ||
        (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        return false;
    }
    std::optional<std::wstring> resolved = finalPath(opened.get());
    if (!resolved) {
        return false;
    }
    const std::lock_guard lock(root().mutex);
    root().directory = std::move(resolved);
    return true;
}

void FileSystem::clearRoot() {
    const std::lock_guard lock(root().mutex);
    root().directory.reset();
}

} // namespace kel
