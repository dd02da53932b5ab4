#include <libKel/RootedPath.h>
#include <libKel/SystemFiles.h>
#include <libKel/Utf8.h>

#include <windows.h>

#include <algorithm>
#include <string_view>

namespace kel {

namespace {

/// Opens a file or a directory for `access`; 0 is enough to query it.
HANDLE open(const std::wstring& path, DWORD access) {
    return ::CreateFileW(path.c_str(), access,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

/// Calls a Windows function for a string of unknown length.
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

/// The absolute path in the form that can exceed 260 characters. Devices keep their form
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

/// True if each `..` follows a directory. Windows removes both without checking.
bool leadsThroughDirectories(const std::wstring& path) {
    constexpr const wchar_t* separators = L"/\\";
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find_first_of(separators, start), path.size());
        if (start > 0 && path.compare(start, end - start, L"..") == 0) {
            const std::optional<std::wstring> before = absolutePath(path.substr(0, start));
            const DWORD attributes =
                before ? ::GetFileAttributesW(before->c_str()) : INVALID_FILE_ATTRIBUTES;
            if (attributes == INVALID_FILE_ATTRIBUTES ||
                (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                return false;
            }
        }
        start = end + 1;
    }
    return true;
}

/// The path of an open file as the system stores it: without links, in its actual case.
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

/// The path to pass to the system, or nothing if `path` is invalid.
std::optional<std::wstring> systemPath(const std::wstring* root, const String& path) {
    std::optional<std::wstring> wanted = widePath(path);
    if (!wanted || !isAsWrittenOnWindows(path.view())) {
        return std::nullopt;
    }
    if (root != nullptr) {
        if (!isPortableRelativePath(path.view())) {
            return std::nullopt;
        }
        std::replace(wanted->begin(), wanted->end(), L'/', L'\\');
        wanted = *root + L'\\' + *wanted;
    }
    return leadsThroughDirectories(*wanted) ? absolutePath(*wanted) : std::nullopt;
}

HANDLE openPath(const std::wstring* root, const String& path, DWORD access) {
    const std::optional<std::wstring> resolved = systemPath(root, path);
    return resolved ? open(*resolved, access) : INVALID_HANDLE_VALUE;
}

std::optional<BY_HANDLE_FILE_INFORMATION> informationOf(HANDLE handle) {
    BY_HANDLE_FILE_INFORMATION information;
    if (handle == INVALID_HANDLE_VALUE || ::GetFileInformationByHandle(handle, &information) == 0) {
        return std::nullopt;
    }
    return information;
}

bool isDirectory(const BY_HANDLE_FILE_INFORMATION& information) {
    return (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::uint64_t joined(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32 | low;
}

/// Converts a time in units of 100 ns since 1601 to nanoseconds since 1970.
std::int64_t nanoseconds(const FILETIME& time) {
    constexpr std::uint64_t from1601To1970 = 116'444'736'000'000'000;
    // Unsigned, because a time outside the years 1678 to 2261 wraps around.
    const std::uint64_t steps = joined(time.dwHighDateTime, time.dwLowDateTime) - from1601To1970;
    return static_cast<std::int64_t>(steps * 100);
}

/// The state of an open file, if it is a regular file inside the root. Its path is queried from the
/// open file, so that no link can redirect it afterwards.
std::optional<FileState> stateOf(HANDLE handle, const std::wstring* root) {
    if (handle == INVALID_HANDLE_VALUE || ::GetFileType(handle) != FILE_TYPE_DISK) {
        return std::nullopt;
    }
    const std::optional<BY_HANDLE_FILE_INFORMATION> information = informationOf(handle);
    if (!information || isDirectory(*information)) {
        return std::nullopt;
    }
    if (root != nullptr) {
        const std::optional<std::wstring> reached = finalPath(handle);
        if (!reached || !isInside(*reached, *root)) {
            return std::nullopt;
        }
    }
    return FileState{.size = joined(information->nFileSizeHigh, information->nFileSizeLow),
                     .modified = nanoseconds(information->ftLastWriteTime),
                     .volume = information->dwVolumeSerialNumber,
                     .index = joined(information->nFileIndexHigh, information->nFileIndexLow)};
}

} // namespace

Handle::~Handle() {
    if (handle_ != INVALID_HANDLE_VALUE) {
        ::CloseHandle(handle_);
    }
}

std::optional<SystemPath> resolveDirectory(const String& path) {
    const Handle handle(openPath(nullptr, path, 0));
    const std::optional<BY_HANDLE_FILE_INFORMATION> information = informationOf(handle.get());
    return information && isDirectory(*information) ? finalPath(handle.get()) : std::nullopt;
}

std::optional<FileState> findFile(const SystemPath* root, const String& path) {
    const Handle handle(openPath(root, path, 0));
    return stateOf(handle.get(), root);
}

OpenFile::OpenFile(const SystemPath* root, const String& path)
    : handle_(openPath(root, path, GENERIC_READ)) {
    state_ = stateOf(handle_.get(), root);
}

std::optional<std::uint64_t> OpenFile::read(unsigned char* to, std::uint64_t count) const {
    constexpr std::uint64_t most = 1u << 30;
    DWORD result = 0;
    if (::ReadFile(handle_.get(), to, static_cast<DWORD>(std::min(count, most)), &result,
                   nullptr) == 0) {
        return std::nullopt;
    }
    return result;
}

} // namespace kel
