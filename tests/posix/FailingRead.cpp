#include "FailingRead.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace support {

namespace {

thread_local bool active = false;
thread_local bool endless = false;
thread_local std::size_t endlessBytes = 0;
thread_local bool failed = false;
thread_local bool inheritable = false;
thread_local int remaining = 0;
thread_local int errorNumber = 0;

} // namespace

FailingRead::FailingRead(int count, int error) {
    active = true;
    failed = false;
    inheritable = false;
    remaining = count;
    errorNumber = error;
}

FailingRead::~FailingRead() {
    active = false;
}

bool FailingRead::happened() const {
    return failed;
}

bool FailingRead::wasInheritable() const {
    return inheritable;
}

EndlessRead::EndlessRead() {
    endless = true;
    endlessBytes = 0;
}

EndlessRead::~EndlessRead() {
    endless = false;
}

std::size_t EndlessRead::given() const {
    return endlessBytes;
}

} // namespace support

// The libraries find this function first, because it is in the program.
extern "C" __attribute__((visibility("default"))) ssize_t read(int file, void* to, size_t count) {
    using namespace support;
    if (endless) {
        count = std::min(count, EndlessRead::step);
        endlessBytes += count;
        return static_cast<ssize_t>(count);
    }
    if (active) {
        inheritable = inheritable || (::fcntl(file, F_GETFD) & FD_CLOEXEC) == 0;
        if (!failed && remaining-- == 0) {
            failed = true;
            errno = errorNumber;
            return errorNumber == 0 ? 0 : -1;
        }
        count = std::min(count, FailingRead::step);
    }
    return ::syscall(SYS_read, file, to, count);
}
