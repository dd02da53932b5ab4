#ifndef LIBKEL_PROCESSSTATE_H
#define LIBKEL_PROCESSSTATE_H

// What the whole process shares: the root of the files, the sink of the log. Not installed.

namespace kel {

/// A variable that is there before the first constructor of a static object runs, and never
/// destroyed: static objects and threads of a host may use the library until the process ends.
///
/// Declare it `constinit`, outside of functions: a function's static would be made under a lock
/// that a fork could copy while another thread holds it.
template <typename T>
union Immortal {
    constexpr Immortal() noexcept : value() {}
    ~Immortal() {}

    T value;
};

/// Holds the one lock of the library while it lives. No code of a host runs meanwhile, neither a
/// sink nor an allocation, so that it may call the library from anywhere. On POSIX systems a fork
/// waits for the lock, so that the child finds it free.
class ProcessLock {
  public:
    ProcessLock() noexcept;
    ProcessLock(const ProcessLock&) = delete;
    ProcessLock& operator=(const ProcessLock&) = delete;
    ~ProcessLock();
};

} // namespace kel

#endif
