#include <libKel/ProcessState.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace kel {

namespace {

// The locks of the systems, since they need neither a constructor nor a destructor; std::mutex has
// one of them on some systems.
#ifdef _WIN32

constinit SRWLOCK mutex = SRWLOCK_INIT;

void lock() noexcept {
    ::AcquireSRWLockExclusive(&mutex);
}

void unlock() noexcept {
    ::ReleaseSRWLockExclusive(&mutex);
}

#else

constinit pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;

void lock() noexcept {
    ::pthread_mutex_lock(&mutex);
}

void unlock() noexcept {
    ::pthread_mutex_unlock(&mutex);
}

// Fails for want of memory alone; then forks do not wait.
[[maybe_unused]] const int forksWait = ::pthread_atfork(lock, unlock, unlock);

#endif

} // namespace

ProcessLock::ProcessLock() noexcept {
    lock();
}

ProcessLock::~ProcessLock() {
    unlock();
}

} // namespace kel
