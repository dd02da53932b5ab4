#include <libStencilor/modern/source_lock.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace kel::Stencilor::internal {

namespace {

// System locks need neither a constructor nor a destructor, so sources can be used before this
// library's static objects are constructed, and while the process exits.
#ifdef _WIN32

constinit SRWLOCK sources = SRWLOCK_INIT;

void lockForReading() noexcept {
    ::AcquireSRWLockShared(&sources);
}

void unlockReading() noexcept {
    ::ReleaseSRWLockShared(&sources);
}

void lockForChange() noexcept {
    ::AcquireSRWLockExclusive(&sources);
}

void unlockChange() noexcept {
    ::ReleaseSRWLockExclusive(&sources);
}

#else

constinit pthread_rwlock_t sources = PTHREAD_RWLOCK_INITIALIZER;

void lockForReading() noexcept {
    ::pthread_rwlock_rdlock(&sources);
}

void lockForChange() noexcept {
    ::pthread_rwlock_wrlock(&sources);
}

void unlockReading() noexcept {
    ::pthread_rwlock_unlock(&sources);
}

void unlockChange() noexcept {
    ::pthread_rwlock_unlock(&sources);
}

/// Called in the child of a fork. Its only thread is not the one that locked, so it must not
/// unlock.
void makeFree() noexcept {
    ::pthread_rwlock_init(&sources, nullptr);
}

// This only fails if memory is exhausted; then forks do not wait.
[[maybe_unused]] const int forksWait = ::pthread_atfork(lockForChange, unlockChange, makeFree);

#endif

} // namespace

source_reading::source_reading() noexcept {
    lockForReading();
}

source_reading::~source_reading() {
    unlockReading();
}

source_change::source_change() noexcept {
    lockForChange();
}

source_change::~source_change() {
    unlockChange();
}

} // namespace kel::Stencilor::internal
