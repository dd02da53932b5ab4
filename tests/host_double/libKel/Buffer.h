#ifndef TESTS_HOST_DOUBLE_LIBKEL_BUFFER_H
#define TESTS_HOST_DOUBLE_LIBKEL_BUFFER_H

#include <cstdint>
#include <new>

namespace kel {

template <typename T>
class Buffer {
  public:
    Buffer() = default;
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() {
        if (capacity > 0 && data != nullptr) {
            ::operator delete(data);
        }
    }

    T* data = nullptr;
    std::uint64_t size = 0;
    std::uint64_t capacity = 0;
};

} // namespace kel

#endif
