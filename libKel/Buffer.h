#ifndef LIBKEL_BUFFER_H
#define LIBKEL_BUFFER_H

#include <libKel/Export.h>

#include <cstdint>
#include <new>

/// @file
/// The block of memory in which the contents of a file are handed over.

namespace kel {

/// A block of memory that a library function fills and the holder of the buffer frees.
///
/// Layout: `data`, `size`, `capacity`, in this order; it is part of the interface, since a buffer
///   that one module fills is read and freed by another.
/// Ownership: owns `data` where `capacity` is greater than zero. Whoever fills the buffer allocates
///   with the global `operator new`, because the destructor frees with the global
///   `operator delete`, in the module that the buffer lives in.
/// Threads: belongs to one thread at a time.
/// Units: `size` and `capacity` count elements of `T`.
/// Copying: not possible, two buffers would free one block.
/// @tparam T the type of the elements; the library itself fills buffers of `unsigned char`
template <typename T>
class Buffer {
  public:
    /// Empty at first: all fields zero.
    /// @{
    Buffer() = default;
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() { release(); }
    /// @}

    /// Frees the block, if there is one, and leaves the buffer as a new one is: all fields zero.
    void release() noexcept {
        if (capacity > 0 && data != nullptr) {
            ::operator delete(data);
        }
        data = nullptr;
        size = 0;
        capacity = 0;
    }

    T* data = nullptr;          ///< the first element, or null
    std::uint64_t size = 0;     ///< how many elements are valid
    std::uint64_t capacity = 0; ///< how many elements fit; zero where nothing is owned
};

} // namespace kel

#endif
