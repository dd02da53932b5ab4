#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <string_view>

// A library to be loaded before all others (LD_PRELOAD), which makes one call of a C function fail.
// Environment variables select it:
//
//     SYSTEM_FAULT         the function
//     SYSTEM_FAULT_CALL    which of its calls, from 1
//     SYSTEM_FAULT_ERROR   the number of the error that it fails with; or
//     SYSTEM_FAULT_SIGNAL  the number of the signal that comes before the call
//     SYSTEM_FAULT_MARK    a file that is created when it happens

namespace {

/// The number in a variable, or 0.
int numberOf(const char* variable) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? 0 : std::atoi(text);
}

void leaveMark() {
    if (const char* const path = std::getenv("SYSTEM_FAULT_MARK")) {
        const long file = ::syscall(SYS_openat, AT_FDCWD, path, O_CREAT | O_WRONLY, 0666);
        ::syscall(SYS_close, file);
    }
}

/// True if this call of `function` must fail; errno is then set.
bool isItsTurn(std::string_view function) {
    static int calls = 0;
    const char* const chosen = std::getenv("SYSTEM_FAULT");
    if (chosen == nullptr || function != chosen || ++calls != numberOf("SYSTEM_FAULT_CALL")) {
        return false;
    }
    leaveMark();
    if (const int signal = numberOf("SYSTEM_FAULT_SIGNAL")) {
        ::kill(::getpid(), signal);
        return false;
    }
    errno = numberOf("SYSTEM_FAULT_ERROR");
    return true;
}

template <typename Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

#define REPLACED extern "C" __attribute__((visibility("default")))

// A function whose arguments are passed on unchanged. The system declares cancellation points
// without `noexcept`.
#define FAILING_POINT(result, failure, function, parameters, arguments)                            \
    REPLACED result function parameters {                                                          \
        static auto* const next = original<result parameters>(#function);                          \
        return isItsTurn(#function) ? failure : next arguments;                                    \
    }
#define FAILING(result, failure, function, parameters, arguments)                                  \
    FAILING_POINT(result, failure, function, parameters noexcept, arguments)

FAILING_POINT(int, -1, close, (int file), (file))
FAILING(int, -1, dup, (int file), (file))
FAILING(int, -1, faccessat, (int folder, const char* path, int mode, int flags),
        (folder, path, mode, flags))
FAILING(int, -1, fchmod, (int file, mode_t mode), (file, mode))
FAILING(int, -1, fchown, (int file, uid_t owner, gid_t group), (file, owner, group))
FAILING(int, -1, fstat, (int file, struct stat* status), (file, status))
FAILING_POINT(int, -1, fsync, (int file), (file))
FAILING(int, -1, lstat, (const char* path, struct stat* status), (path, status))
FAILING_POINT(int, -1, poll, (pollfd * files, nfds_t count, int timeout), (files, count, timeout))
FAILING_POINT(ssize_t, -1, read, (int file, void* to, size_t size), (file, to, size))
FAILING(ssize_t, -1, readlink, (const char* path, char* to, size_t size), (path, to, size))
FAILING(char*, nullptr, realpath, (const char* path, char* to), (path, to))
FAILING(int, -1, rename, (const char* from, const char* to), (from, to))
FAILING(int, -1, stat, (const char* path, struct stat* status), (path, status))
FAILING(int, -1, unlink, (const char* path), (path))
FAILING_POINT(ssize_t, -1, write, (int file, const void* from, size_t size), (file, from, size))

// Functions with a mode that is only used if they create a file.

REPLACED int open(const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    static auto* const next = original<int(const char*, int, ...)>("open");
    return isItsTurn("open") ? -1 : next(path, flags, mode);
}

REPLACED int openat(int folder, const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    static auto* const next = original<int(int, const char*, int, ...)>("openat");
    return isItsTurn("openat") ? -1 : next(folder, path, flags, mode);
}
