#include <libKel/ProcessState.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace kel {

namespace {

// System locks, because they need neither a constructor nor a destructor; std::mutex has one on
// some systems.
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

// This only fails if memory is exhausted; then forks do not wait.
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
