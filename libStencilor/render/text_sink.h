#ifndef LIBSTENCILOR_RENDER_TEXT_SINK_H
#define LIBSTENCILOR_RENDER_TEXT_SINK_H

#include <algorithm>
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
        std::memcpy(bytes_.get() + size_, text.data(), text.size());
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
