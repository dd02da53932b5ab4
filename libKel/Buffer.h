#ifndef LIBKEL_BUFFER_H
#define LIBKEL_BUFFER_H

#include <libKel/Export.h>

#include <cstdint>
#include <new>

/// @file
/// The memory block that receives the contents of a file.

namespace kel {

/// A block of memory that a library function fills and the buffer's owner frees.
///
/// Layout: `data`, `size`, `capacity`, in this order. The layout is part of the interface, because
///   one module may fill a buffer that another one reads and frees.
/// Ownership: owns `data` if `capacity` is greater than zero. To fill a buffer, allocate with the
///   global `operator new`: the destructor calls the global `operator delete`, in the module where
///   the buffer is destroyed.
/// Threads: not thread-safe.
/// Units: `size` and `capacity` count elements of `T`.
/// Copying: not possible, because two buffers would free the same block.
/// @tparam T the type of the elements; the library itself fills buffers of `unsigned char`
template <typename T>
class Buffer {
  public:
    /// Initially empty: all fields are zero.
    /// @{
    Buffer() = default;
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() { release(); }
    /// @}

    /// Frees the block, if there is one, and sets all fields to zero.
    void release() noexcept {
        if (capacity > 0 && data != nullptr) {
            ::operator delete(data);
        }
        data = nullptr;
        size = 0;
        capacity = 0;
    }

    T* data = nullptr;          ///< the first element, or null
    std::uint64_t size = 0;     ///< the number of valid elements
    std::uint64_t capacity = 0; ///< the number of elements that fit; zero if nothing is owned
};

} // namespace kel

#endif
