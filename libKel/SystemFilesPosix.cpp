#include <libKel/RootedPath.h>
#include <libKel/SystemFiles.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

namespace kel {

namespace {

struct FreeBlock {
    void operator()(char* block) const noexcept { std::free(block); }
};

/// The path without links, `.` and `..`, or nothing if it does not exist.
std::optional<std::string> canonicalPath(const std::string& path) {
    const std::unique_ptr<char, FreeBlock> resolved(::realpath(path.c_str(), nullptr));
    if (resolved == nullptr) {
        if (errno == ENOMEM) {
            throw std::bad_alloc();
        }
        return std::nullopt;
    }
    return std::string(resolved.get());
}

/// The path unchanged, or nothing if it is empty or contains a NUL.
std::optional<std::string> plainPath(const String& path) {
    if (path.empty() || path.view().find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    return path.str();
}

bool isInside(const std::string& path, const std::string& directory) {
    const std::string start = directory == "/" ? directory : directory + "/";
    return path.compare(0, start.size(), start) == 0;
}

/// The path to pass to the system, or nothing if `path` is invalid.
std::optional<std::string> systemPath(const std::string* root, const String& path) {
    std::optional<std::string> wanted = plainPath(path);
    if (!wanted || root == nullptr) {
        return wanted;
    }
    if (!isPortableRelativePath(*wanted)) {
        return std::nullopt;
    }
    std::optional<std::string> resolved = canonicalPath(*root + "/" + *wanted);
    return resolved && isInside(*resolved, *root) ? resolved : std::nullopt;
}

/// Opens without blocking, because a pipe would wait for its writer.
int openForReading(const std::string* root, const String& path) {
    const std::optional<std::string> resolved = systemPath(root, path);
    return resolved ? ::open(resolved->c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK) : -1;
}

/// The state of a regular file; nothing for other files.
std::optional<FileState> stateOf(const struct stat& status) noexcept {
    if (!S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    // Unsigned, because a time outside the years 1678 to 2261 wraps around.
    const auto seconds = static_cast<std::uint64_t>(status.st_mtim.tv_sec);
    const auto nanoseconds = static_cast<std::uint64_t>(status.st_mtim.tv_nsec);
    return FileState{.size = static_cast<std::uint64_t>(status.st_size),
                     .modified = static_cast<std::int64_t>(seconds * 1'000'000'000 + nanoseconds),
                     .volume = static_cast<std::uint64_t>(status.st_dev),
                     .index = static_cast<std::uint64_t>(status.st_ino)};
}

} // namespace

Handle::~Handle() {
    if (handle_ >= 0) {
        ::close(handle_);
    }
}

std::optional<SystemPath> resolveDirectory(const String& path) {
    const std::optional<std::string> wanted = plainPath(path);
    std::optional<std::string> resolved = wanted ? canonicalPath(*wanted) : std::nullopt;
    struct stat status;
    if (!resolved || ::stat(resolved->c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        ::access(resolved->c_str(), X_OK) != 0) {
        return std::nullopt;
    }
    return resolved;
}

std::optional<FileState> findFile(const SystemPath* root, const String& path) {
    const std::optional<std::string> resolved = systemPath(root, path);
    struct stat status;
    if (!resolved || ::stat(resolved->c_str(), &status) != 0) {
        return std::nullopt;
    }
    return stateOf(status);
}

OpenFile::OpenFile(const SystemPath* root, const String& path)
    : handle_(openForReading(root, path)) {
    struct stat status;
    if (handle_.get() >= 0 && ::fstat(handle_.get(), &status) == 0) {
        state_ = stateOf(status);
    }
}

std::optional<std::uint64_t> OpenFile::read(unsigned char* to, std::uint64_t count) const {
    ssize_t result;
    do {
        result = ::read(handle_.get(), to, count);
    } while (result < 0 && errno == EINTR);
    return result < 0 ? std::nullopt : std::optional<std::uint64_t>(result);
}

} // namespace kel
