#ifndef LIBSTENCILOR_MODERN_SOURCE_LOCK_H
#define LIBSTENCILOR_MODERN_SOURCE_LOCK_H

namespace kel::Stencilor::internal {

/// The lock that template sources hold while they read or change their caches.
///
/// All sources share one lock, so that on POSIX systems a fork can wait for it, and it is free in
/// the child. No file is read, nothing is parsed, and no host code is called while it is held.

/// A shared lock during its lifetime.
class source_reading {
  public:
    source_reading() noexcept;
    source_reading(const source_reading&) = delete;
    source_reading& operator=(const source_reading&) = delete;
    ~source_reading();
};

/// An exclusive lock during its lifetime.
class source_change {
  public:
    source_change() noexcept;
    source_change(const source_change&) = delete;
    source_change& operator=(const source_change&) = delete;
    ~source_change();
};

} // namespace kel::Stencilor::internal

#endif
