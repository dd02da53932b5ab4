#include <tools/stencilor/system/Descriptor.h>
#include <tools/stencilor/system/System.h>
#include <tools/stencilor/system/TemporaryName.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <optional>

namespace stencilor::system {

namespace {

/// Delays signals that end the program while a temporary file exists. Signals caused by faults of
/// the program itself are not delayed.
class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t held;
        ::sigfillset(&held);
        for (const int fault : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP}) {
            ::sigdelset(&held, fault);
        }
        ::sigprocmask(SIG_BLOCK, &held, &before_);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_;
};

/// A file with a unique name, which is removed unless it replaces another one.
class TemporaryFile {
  public:
    /// A `secret` file is only accessible to this user until it has the permissions of another one.
    TemporaryFile(const std::filesystem::path& folder, bool secret)
        : file_(create(folder, secret ? 0600 : 0666, path_)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!path_.empty()) {
            ::unlink(path_.c_str());
        }
    }

    /// Copies the owner, the group and the permissions of another file. If the owner or the group
    /// cannot be copied, nobody gains rights: the set-id bit is cleared, and the group gets no more
    /// rights than others.
    void resemble(const struct stat& other) {
        constexpr auto unchanged = static_cast<uid_t>(-1);
        const bool hasGroup = ::fchown(file_.get(), unchanged, other.st_gid) == 0;
        const bool hasOwner = ::fchown(file_.get(), other.st_uid, unchanged) == 0;
        mode_ = other.st_mode & 07777u;
        if (!hasOwner) {
            *mode_ &= ~mode_t{S_ISUID};
        }
        if (!hasGroup) {
            *mode_ &= ~mode_t{S_ISGID | S_IRWXG} | ((*mode_ & S_IRWXO) << 3);
        }
        setMode(*mode_);
    }

    void write(std::string_view content) {
        writeAll(file_.get(), content);
        if (mode_) {
            setMode(*mode_); // because writing clears set-id bits
        }
        // Some file systems do not support this.
        if (retry([this] { return ::fsync(file_.get()); }) != 0 && errno != EINVAL &&
            errno != ENOTSUP) {
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
    /// Sets `path` once the file exists.
    static int create(const std::filesystem::path& folder, mode_t mode,
                      std::filesystem::path& path) {
        for (int attempt = 1;; ++attempt) {
            const std::filesystem::path candidate = folder / temporaryName();
            const int file =
                ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (file >= 0) {
                path = candidate;
                return file;
            }
            if (errno != EEXIST || attempt == mostTemporaryNames) {
                fail();
            }
        }
    }

    /// File systems without permissions refuse to set them.
    void setMode(mode_t mode) {
        struct stat status;
        if (::fstat(file_.get(), &status) != 0 ||
            ((status.st_mode & 07777u) != mode && ::fchmod(file_.get(), mode) != 0)) {
            fail();
        }
    }

    std::filesystem::path path_;
    Descriptor file_;
    std::optional<mode_t> mode_; // that of the file that it replaces
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

/// True for the file that is open as the standard output, such as `/dev/stdout` if that is
/// redirected to a file.
bool isStandardOutput(const struct stat& status) {
    struct stat output;
    return ::fstat(STDOUT_FILENO, &output) == 0 && output.st_dev == status.st_dev &&
           output.st_ino == status.st_ino;
}

/// The target of a link, or of a chain of links, whether or not it exists.
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
    TemporaryFile temporary(path.parent_path(), former.has_value());
    if (former) {
        temporary.resemble(*former);
    }
    temporary.write(content);
    temporary.replace(path);
}

} // namespace

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

} // namespace stencilor::system
