#include <libKel/FileSystem.h>
#include <libKel/RootedPath.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace kel {

namespace {

constexpr std::uint64_t longestFile = std::numeric_limits<std::uint32_t>::max();

struct Root {
    std::mutex mutex;
    std::optional<std::string> directory; // canonical
};

Root& root() {
    static Root instance;
    return instance;
}

std::optional<std::string> rootDirectory() {
    const std::lock_guard lock(root().mutex);
    return root().directory;
}

struct FreeBlock {
    void operator()(char* block) const noexcept { std::free(block); }
};

/// The path without links, `.` and `..`, or nothing where it names nothing.
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

bool isInside(const std::string& path, const std::string& directory) {
    const std::string start = directory == "/" ? directory : directory + "/";
    return path.compare(0, start.size(), start) == 0;
}

/// The path to hand to the system for `path`, or nothing where it names nothing.
std::optional<std::string> systemPath(const String& path) {
    std::string wanted = path.str();
    if (wanted.empty() || wanted.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    const std::optional<std::string> directory = rootDirectory();
    if (!directory) {
        return wanted;
    }
    if (!isPortableRelativePath(wanted)) {
        return std::nullopt;
    }
    std::optional<std::string> resolved = canonicalPath(*directory + "/" + wanted);
    return resolved && isInside(*resolved, *directory) ? resolved : std::nullopt;
}

class OpenFile {
  public:
    /// Opens without waiting, since a pipe would wait for its writer.
    explicit OpenFile(const std::string& path)
        : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    /// The size that the system tells of a regular file; nothing for all others.
    std::optional<std::uint64_t> size() const {
        struct stat status;
        if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
            return std::nullopt;
        }
        return static_cast<std::uint64_t>(status.st_size);
    }

    /// Reads at most `count` bytes; 0 at the end of the file, nothing on failure.
    std::optional<std::uint64_t> read(unsigned char* to, std::uint64_t count) const {
        ssize_t result;
        do {
            result = ::read(descriptor_, to, count);
        } while (result < 0 && errno == EINTR);
        return result < 0 ? std::nullopt : std::optional<std::uint64_t>(result);
    }

  private:
    int descriptor_;
};

/// Gives `buffer` room for `capacity` bytes and keeps what it holds.
void resize(Buffer<unsigned char>& buffer, std::uint64_t capacity) {
    auto* block = static_cast<unsigned char*>(::operator new(capacity));
    const std::uint64_t size = buffer.size;
    if (size > 0) {
        std::memcpy(block, buffer.data, size);
    }
    buffer.release();
    buffer.data = block;
    buffer.size = size;
    buffer.capacity = capacity;
}

/// Reads up to the end of the file. One byte more than the expected size is asked for, so that a
/// single read tells that the end was reached; files that the system makes up as they are read
/// (below /proc) tell a size of 0 and are read until nothing more comes.
bool readWhole(const OpenFile& file, std::uint64_t expected, Buffer<unsigned char>& out) {
    resize(out, expected + 1);
    while (out.size <= longestFile) {
        if (out.size == out.capacity) {
            resize(out, out.capacity * 2);
        }
        const std::uint64_t room = out.capacity - out.size;
        const std::optional<std::uint64_t> count = file.read(out.data + out.size, room);
        if (!count) {
            return false;
        }
        out.size += *count;
        if (*count == 0 || (*count < room && out.size == expected)) {
            return out.size <= longestFile;
        }
    }
    return false;
}

} // namespace

bool FileSystem::exists(const String& path) {
    const std::optional<std::string> resolved = systemPath(path);
    struct stat status;
    return resolved && ::stat(resolved->c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool FileSystem::loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length) {
    out.release();
    if (length != nullptr) {
        *length = 0;
    }
    const std::optional<std::string> resolved = systemPath(path);
    if (!resolved) {
        return false;
    }
    const OpenFile file(*resolved);
    const std::optional<std::uint64_t> expected = file.size();
    if (!expected || *expected > longestFile || !readWhole(file, *expected, out)) {
        out.release();
        return false;
    }
    if (length != nullptr) {
        *length = static_cast<unsigned long>(out.size);
    }
    return true;
}

bool FileSystem::setRoot(const String& directory) {
    const std::string wanted = directory.str();
    if (wanted.empty() || wanted.find('\0') != std::string::npos) {
        return false;
    }
    std::optional<std::string> resolved = canonicalPath(wanted);
    struct stat status;
    if (!resolved || ::stat(resolved->c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        ::access(resolved->c_str(), X_OK) != 0) {
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
