#ifndef LIBSTENCILOR_RENDER_TEXT_SINK_H
#define LIBSTENCILOR_RENDER_TEXT_SINK_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace kel::Stencilor::internal {

/// The text that rendering appends to. Unlike a `std::string` it keeps no terminator up to date, so
/// that appending is a test and a copy, and it grows by `realloc`, which moves large blocks without
/// copying.
/// Copying: not possible, there is one for each rendering.
class text_sink {
  public:
    text_sink() = default;
    text_sink(const text_sink&) = delete;
    text_sink& operator=(const text_sink&) = delete;

    void append(std::string_view text) {
        if (text.size() > capacity_ - size_) {
            grow(text.size());
        }
        copy(bytes_.get() + size_, text.data(), text.size());
        size_ += text.size();
    }

    void clear() noexcept { size_ = 0; }

    std::string_view view() const noexcept { return {bytes_.get(), size_}; }

    /// The text with a NUL behind it, until the next change.
    const char* c_str() {
        if (size_ == capacity_) {
            grow(1);
        }
        bytes_.get()[size_] = '\0';
        return bytes_.get();
    }

  private:
    struct release {
        void operator()(char* block) const noexcept { std::free(block); }
    };

    /// Most pieces are short. Two overlapping moves of a fixed size are much cheaper than a call.
    static void copy(char* to, const char* from, std::size_t size) {
        if (size > 32) {
            std::memcpy(to, from, size);
        } else if (size >= 16) {
            copyEnds<16>(to, from, size);
        } else if (size >= 8) {
            copyEnds<8>(to, from, size);
        } else if (size >= 4) {
            copyEnds<4>(to, from, size);
        } else if (size > 0) {
            to[0] = from[0];
            to[size / 2] = from[size / 2];
            to[size - 1] = from[size - 1];
        }
    }

    /// The first and the last `Count` bytes of `size`, which are all where `size` is at most twice
    /// as much.
    template <std::size_t Count>
    static void copyEnds(char* to, const char* from, std::size_t size) {
        std::array<char, Count> first;
        std::array<char, Count> last;
        std::memcpy(first.data(), from, Count);
        std::memcpy(last.data(), from + size - Count, Count);
        std::memcpy(to, first.data(), Count);
        std::memcpy(to + size - Count, last.data(), Count);
    }

    void grow(std::size_t added) {
        const std::size_t capacity = std::max({size_ + added, capacity_ * 2, std::size_t{256}});
        void* block = std::realloc(bytes_.get(), capacity);
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        static_cast<void>(bytes_.release());
        bytes_.reset(static_cast<char*>(block));
        capacity_ = capacity;
    }

    std::unique_ptr<char, release> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace kel::Stencilor::internal

#endif
