#include <libKel/String.h>
#include <tools/stencilor/system/FolderList.h>
#include <tools/stencilor/system/Handle.h>
#include <tools/stencilor/system/PercentEncoding.h>
#include <tools/stencilor/system/System.h>

#include <algorithm>
#include <cstdint>

namespace stencilor::system {

namespace {

/// The size of a file on disk; 0 for others, whose size is not known in advance.
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
            // This is the end of a pipe whose writer has exited.
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

/// Writes wide characters to a console, which would interpret bytes in its code page.
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

} // namespace

std::filesystem::path widePath(const std::string& path) {
    const std::filesystem::path wide = kel::String(std::string_view(path)).toWide();
    // The limit is lower for folders, and names of temporary files are longer.
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

std::size_t readStandardInput(char* data, std::size_t size) {
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(size, 1u << 30));
    if (::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), data, wanted, &count, nullptr) == 0) {
        if (::GetLastError() == ERROR_BROKEN_PIPE) {
            return 0;
        }
        fail();
    }
    return count;
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

bool showsColors(bool standardError) {
    constexpr DWORD obeysEscapes = 0x0004; // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    const HANDLE stream = ::GetStdHandle(standardError ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return ::GetConsoleMode(stream, &mode) != 0 &&
           ::SetConsoleMode(stream, mode | obeysEscapes) != 0;
}

std::optional<FileState> stateOf(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (::GetFileAttributesExW(widePath(path).c_str(), GetFileExInfoStandard, &data) == 0 ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return std::nullopt;
    }
    const auto join = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
    return FileState{.size = join(data.nFileSizeHigh, data.nFileSizeLow),
                     .modified = static_cast<std::int64_t>(join(
                         data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime))};
}

bool isSameFile(const std::string& path, const std::string& other) {
    std::error_code failure;
    return std::filesystem::is_regular_file(widePath(path), failure) &&
           std::filesystem::equivalent(widePath(path), widePath(other), failure);
}

std::string folderOf(const std::string& path) {
    const std::filesystem::path folder = widePath(path).parent_path();
    return folder.empty() ? "." : kel::String::fromWide(folder.native()).str();
}

std::string identityOf(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path canonical =
        std::filesystem::weakly_canonical(widePath(path), failure);
    return failure ? path : kel::String::fromWide(canonical.native()).str();
}

std::string uriOf(const std::string& path) {
    std::string rest = path;
    std::replace(rest.begin(), rest.end(), '\\', '/');
    const bool hasDrive = rest.size() > 1 && rest[1] == ':';
    return hasDrive ? "file:///" + rest.substr(0, 2) + percentEncode(rest.substr(2))
                    : percentEncode(rest);
}

/// `/C:/folder/file`, where the colon may be encoded, and the drive a small letter. Other hosts are
/// not supported.
std::optional<std::string> pathOfUri(std::string_view uri) {
    auto path = decodeFileUri(uri);
    if (path && path->size() > 2 && (*path)[2] == ':') {
        path->erase(0, 1);
        char& drive = path->front();
        drive = drive >= 'a' && drive <= 'z' ? static_cast<char>(drive - 'a' + 'A') : drive;
    }
    return path;
}

bool isAbsolute(const std::string& path) {
    return widePath(path).has_root_path(); // also "/a" and "C:a", whose folder is another one
}

std::vector<std::string> namesIn(const std::string& folder) {
    return listFolder(folder.empty() ? std::filesystem::path() : widePath(folder),
                      [](const std::filesystem::path& path) {
                          return kel::String::fromWide(path.native()).str();
                      });
}

} // namespace stencilor::system
