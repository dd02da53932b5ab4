#include <tools/stencilor/system/Descriptor.h>
#include <tools/stencilor/system/FolderList.h>
#include <tools/stencilor/system/PercentEncoding.h>
#include <tools/stencilor/system/System.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

namespace stencilor::system {

namespace {

/// The size of a regular file; 0 for others, whose size is not known in advance.
std::uint64_t sizeOf(int descriptor) {
    struct stat status;
    if (::fstat(descriptor, &status) != 0) {
        fail();
    }
    return S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::string readAll(int descriptor) {
    std::string content;
    std::string block(std::size_t{256} * 1024, '\0');
    bool tooLarge = sizeOf(descriptor) > longestText;
    while (!tooLarge) {
        const std::size_t count = transfer(
            descriptor, POLLIN, [&] { return ::read(descriptor, block.data(), block.size()); });
        if (count == 0) {
            return content;
        }
        content.append(block, 0, count);
        tooLarge = content.size() > longestText;
    }
    throw std::system_error(std::make_error_code(std::errc::file_too_large));
}

} // namespace

std::vector<std::string> start(int argc, char** argv) {
    // A file that exceeds its size limit is then an ordinary failure.
    std::signal(SIGXFSZ, SIG_IGN);
    return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
}

std::string readFile(const std::string& path) {
    const Descriptor file(retry([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    return readAll(file.get());
}

std::string readStandardInput() {
    return readAll(STDIN_FILENO);
}

std::size_t readStandardInput(char* data, std::size_t size) {
    return transfer(STDIN_FILENO, POLLIN, [=] { return ::read(STDIN_FILENO, data, size); });
}

void writeStandardOutput(std::string_view text) {
    if (text.empty()) {
        return;
    }
    writeAll(STDOUT_FILENO, text);
    // Some file systems only report on closing that they are full.
    Descriptor(retry([] { return ::dup(STDOUT_FILENO); })).close();
}

void writeStandardError(std::string_view text) noexcept {
    try {
        writeAll(STDERR_FILENO, text);
    } catch (const std::system_error&) {
    }
}

bool showsColors(bool standardError) {
    const char* const terminal = std::getenv("TERM");
    return ::isatty(standardError ? STDERR_FILENO : STDOUT_FILENO) != 0 && terminal != nullptr &&
           *terminal != '\0' && std::string_view(terminal) != "dumb";
}

std::optional<FileState> stateOf(const std::string& path) {
    struct stat status;
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    constexpr std::int64_t second = 1'000'000'000;
    return FileState{static_cast<std::uint64_t>(status.st_size),
                     status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec, status.st_ino};
}

bool isSameFile(const std::string& path, const std::string& other) {
    struct stat one;
    struct stat two;
    return ::stat(path.c_str(), &one) == 0 && ::stat(other.c_str(), &two) == 0 &&
           S_ISREG(one.st_mode) && one.st_dev == two.st_dev && one.st_ino == two.st_ino;
}

std::string folderOf(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder.string();
}

std::string identityOf(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(path, failure);
    return failure ? path : canonical.string();
}

std::string uriOf(const std::string& path) {
    return (path.starts_with('/') ? "file://" : "") + percentEncode(path);
}

std::optional<std::string> pathOfUri(std::string_view uri) {
    return decodeFileUri(uri);
}

bool isAbsolute(const std::string& path) {
    return path.starts_with('/');
}

std::vector<std::string> namesIn(const std::string& folder) {
    return listFolder(folder, [](const std::filesystem::path& path) { return path.string(); });
}

} // namespace stencilor::system
