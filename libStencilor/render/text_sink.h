#ifndef LIBSTENCILOR_RENDER_TEXT_SINK_H
#define LIBSTENCILOR_RENDER_TEXT_SINK_H

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kel::Stencilor::internal {

/// The text that rendering appends to. Unlike a `std::string` it keeps no terminator up to date, so
/// that appending is a test and a copy; short texts need no memory of their own, and long ones grow
/// by `realloc`, which moves large blocks without copying.
/// Copying: not possible, there is one for each rendering.
class text_sink {
  public:
    text_sink() noexcept : begin_(inline_), end_(inline_), limit_(inline_ + sizeof(inline_)) {}
    text_sink(const text_sink&) = delete;
    text_sink& operator=(const text_sink&) = delete;
    ~text_sink() {
        if (begin_ != inline_) {
            std::free(begin_);
        }
    }

    void append(std::string_view text) {
        char* const to = roomFor(text.size());
        copy(to, text.data(), text.size());
        end_ = to + text.size();
    }

    /// Appends the bytes up to the first NUL. Values are short, and were written just now: reading
    /// them back byte by byte is quicker than the wide loads of `strlen`, which have to wait until
    /// all of the narrower stores have reached the cache.
    void appendUpToNul(const char* text) {
        constexpr std::size_t few = 16;
        char* const to = roomFor(few);
        for (std::size_t count = 0; count < few; ++count) {
            if (text[count] == '\0') {
                end_ = to + count;
                return;
            }
            to[count] = text[count];
        }
        end_ = to + few;
        append(text + few);
    }

    /// What is longer is given back early: no more than twice an output shall be held at a time.
    static constexpr std::size_t longText = 65536;

    /// Gives back the room that a long text does not take.
    void trim() noexcept {
        if (room() > longText) {
            shrink();
        }
    }

    /// Empties it. The room of a short text is kept for the next.
    void clear() noexcept {
        end_ = begin_;
        if (room() > longText) {
            std::free(begin_);
            begin_ = end_ = inline_;
            limit_ = inline_ + sizeof(inline_);
        }
    }

    std::string_view view() const noexcept {
        return {begin_, static_cast<std::size_t>(end_ - begin_)};
    }

    /// The text with a NUL behind it, until the next change.
    const char* c_str() {
        *roomFor(1) = '\0';
        return begin_;
    }

  private:
    /// Where so many bytes can be written. A local copy of `end_`: what is written could be any
    /// member as far as the compiler knows, which would be read again after each byte.
    char* roomFor(std::size_t added) {
        if (added > static_cast<std::size_t>(limit_ - end_)) {
            grow(added);
        }
        return end_;
    }

    /// Most pieces are short. Two overlapping moves of a fixed size are much cheaper than a call.
    static void copy(char* to, const char* from, std::size_t size) {
        if (size > 64) {
            std::memcpy(to, from, size);
        } else if (size >= 32) {
            copyEnds<32>(to, from, size);
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
        std::memcpy(to, from, Count);
        std::memcpy(to + size - Count, from + size - Count, Count);
    }

    std::size_t room() const noexcept { return static_cast<std::size_t>(limit_ - begin_); }
    void grow(std::size_t added);
    void shrink() noexcept;

    char* begin_; // inline_, or a block of malloc
    char* end_;
    char* limit_;
    char inline_[256]; // enough for a line or two, which then cost no allocation
};

} // namespace kel::Stencilor::internal

#endif
