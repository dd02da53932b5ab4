#ifndef LIBKEL_PROCESSSTATE_H
#define LIBKEL_PROCESSSTATE_H

// State of the whole process: the root of files and the log sink. Not installed.

namespace kel {

/// A variable that exists before the first static constructor runs and is never destroyed, so that
/// static objects and threads of a host can use the library until the process ends.
///
/// Declare it `constinit`, outside functions: a static in a function would be initialized under a
/// lock, which a fork could copy while another thread holds it.
template <typename T>
union Immortal {
    constexpr Immortal() noexcept : value() {}
    ~Immortal() {}

    T value;
};

/// Holds the library's only lock during its lifetime. No host code, such as a sink or an allocation
/// function, runs meanwhile, so host code may call the library from anywhere. On POSIX systems, a
/// fork waits for the lock, so that it is free in the child.
class ProcessLock {
  public:
    ProcessLock() noexcept;
    ProcessLock(const ProcessLock&) = delete;
    ProcessLock& operator=(const ProcessLock&) = delete;
    ~ProcessLock();
};

} // namespace kel

#endif
