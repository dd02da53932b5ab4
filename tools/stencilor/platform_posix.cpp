#include <fcntl.h>
#include <sys/stat.h>
#include <tools/stencilor/platform.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace stencilor::platform {

namespace {

[[noreturn]] void fail(int error = errno) {
    throw std::system_error(error, std::generic_category());
}

/// Calls again what a signal has interrupted.
template <typename Call>
auto retry(Call call) {
    decltype(call()) result;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {
        if (descriptor_ < 0) {
            fail();
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    int get() const { return descriptor_; }

    /// Closes it and fails where that does: some file systems tell only then that they are full.
    void close() {
        const int descriptor = std::exchange(descriptor_, -1);
        if (::close(descriptor) != 0 && errno != EINTR) {
            fail();
        }
    }

  private:
    int descriptor_;
};

std::string readAll(int descriptor) {
    std::string content;
    std::string block(std::size_t{256} * 1024, '\0');
    while (true) {
        const ssize_t count = retry([&] { return ::read(descriptor, block.data(), block.size()); });
        if (count < 0) {
            fail();
        }
        if (count == 0) {
            return content;
        }
        content.append(block, 0, static_cast<std::size_t>(count));
    }
}

void writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = retry([&] { return ::write(descriptor, text.data(), text.size()); });
        if (count < 0) {
            fail();
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Keeps the signals that end a program from ending it while a temporary file exists.
class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t held;
        ::sigemptyset(&held);
        for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
            ::sigaddset(&held, signal);
        }
        ::sigprocmask(SIG_BLOCK, &held, &before_);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_;
};

/// A file of a name that nothing else has, which is removed unless it takes another one's place.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::filesystem::path& folder)
        : path_(freeName(folder)),
          file_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!path_.empty()) {
            ::unlink(path_.c_str());
        }
    }

    /// Gives the file the owner, as far as that is allowed, and the permissions of another.
    void resemble(const struct stat& other) {
        [[maybe_unused]] const int owned = ::fchown(file_.get(), other.st_uid, other.st_gid);
        if (::fchmod(file_.get(), other.st_mode & 07777u) != 0) {
            fail();
        }
    }

    void write(std::string_view content) {
        writeAll(file_.get(), content);
        // Some file systems cannot be asked for this.
        if (::fsync(file_.get()) != 0 && errno != EINVAL && errno != ENOTSUP) {
            fail();
        }
        file_.close();
    }

    void replace(const std::filesystem::path& path) {
        if (::rename(path_.c_str(), path.c_str()) != 0) {
            fail();
        }
        path_.clear();
    }

  private:
    static std::filesystem::path freeName(const std::filesystem::path& folder) {
        const std::string start = ".stencilor-" + std::to_string(::getpid()) + "-";
        struct stat status;
        std::filesystem::path path;
        unsigned int attempt = 0;
        do {
            path = folder / (start + std::to_string(attempt++));
        } while (::lstat(path.c_str(), &status) == 0);
        return path;
    }

    std::filesystem::path path_;
    Descriptor file_;
};

std::optional<struct stat> statusOf(const std::filesystem::path& path) {
    struct stat status;
    if (::stat(path.c_str(), &status) == 0) {
        return status;
    }
    if (errno != ENOENT) {
        fail();
    }
    return std::nullopt;
}

/// True for what is open as the standard output: `/dev/stdout`, where that is redirected to a file.
bool isStandardOutput(const struct stat& status) {
    struct stat output;
    return ::fstat(STDOUT_FILENO, &output) == 0 && output.st_dev == status.st_dev &&
           output.st_ino == status.st_ino;
}

/// The path that a link, or a link to a link, leads to, be there a file or not.
std::filesystem::path followLinks(std::filesystem::path path) {
    for (int links = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(path));
         ++links) {
        if (links == 40) {
            fail(ELOOP);
        }
        path = path.parent_path() / std::filesystem::read_symlink(path);
    }
    return path;
}

void replaceFile(const std::filesystem::path& path, const std::optional<struct stat>& former,
                 std::string_view content) {
    if (former && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
        fail();
    }
    const SignalsHeld held;
    TemporaryFile temporary(path.parent_path());
    if (former) {
        temporary.resemble(*former);
    }
    temporary.write(content);
    temporary.replace(path);
}

} // namespace

std::vector<std::string> start(int argc, char** argv) {
    // A file that grows over its limit is then a failure like others, which leaves nothing behind.
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

void writeStandardOutput(std::string_view text) {
    writeAll(STDOUT_FILENO, text);
}

void writeStandardError(std::string_view text) noexcept {
    try {
        writeAll(STDERR_FILENO, text);
    } catch (const std::system_error&) {
    }
}

std::string folderOf(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder.string();
}

std::string identityOf(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path canonical = std::filesystem::canonical(path, failure);
    return failure ? path : canonical.string();
}

void writeFile(const std::string& path, std::string_view content) {
    const std::optional<struct stat> former = statusOf(path);
    if (former && isStandardOutput(*former)) {
        writeStandardOutput(content);
    } else if (former && !S_ISREG(former->st_mode)) {
        Descriptor file(retry([&] { return ::open(path.c_str(), O_WRONLY | O_CLOEXEC); }));
        writeAll(file.get(), content);
        file.close();
    } else {
        replaceFile(followLinks(path), former, content);
    }
}

} // namespace stencilor::platform
