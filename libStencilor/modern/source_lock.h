#ifndef LIBSTENCILOR_MODERN_SOURCE_LOCK_H
#define LIBSTENCILOR_MODERN_SOURCE_LOCK_H

namespace kel::Stencilor::internal {

/// What the sources of templates hold while they read or change what they keep.
///
/// There is one lock for all of them, so that on POSIX systems a fork can wait for it: the child
/// then finds it free. Nothing is read, parsed or called meanwhile.

/// Excludes changes while it lives.
class source_reading {
  public:
    source_reading() noexcept;
    source_reading(const source_reading&) = delete;
    source_reading& operator=(const source_reading&) = delete;
    ~source_reading();
};

/// Excludes all others while it lives.
class source_change {
  public:
    source_change() noexcept;
    source_change(const source_change&) = delete;
    source_change& operator=(const source_change&) = delete;
    ~source_change();
};

} // namespace kel::Stencilor::internal

#endif
