#ifndef LIBSTENCILOR_RENDER_TEXT_SINK_H
#define LIBSTENCILOR_RENDER_TEXT_SINK_H

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kel::Stencilor::internal {

/// True if no byte of `word` is 0 or above 127.
constexpr bool arePlain(std::uint64_t word) noexcept {
    return (((word - 0x0101010101010101u) | word) & 0x8080808080808080u) == 0;
}

/// As many bytes as `Number` has.
template <typename Number>
std::uint64_t loadBytes(const char* from) noexcept {
    Number number;
    std::memcpy(&number, from, sizeof(number));
    return number;
}

/// The text that rendering appends to. Unlike a `std::string` it keeps no terminator up to date, so
/// that appending is a test and a copy; short texts need no memory of their own, and long ones grow
/// by `realloc`, which moves large blocks without copying.
/// Errors: `std::length_error` where it would hold more than a `kel::String` can.
/// Copying: not possible, there is one for each rendering.
class text_sink {
  public:
    /// The bytes before the text in a block of `malloc`.
    static constexpr std::size_t headroom = 16;

    text_sink() noexcept : begin_(inline_), end_(inline_), limit_(inline_ + inlineRoom) {}
    text_sink(const text_sink&) = delete;
    text_sink& operator=(const text_sink&) = delete;
    ~text_sink() {
        if (begin_ != inline_) {
            std::free(begin_ - headroom);
        }
    }

    void append(std::string_view text) {
        char* const to = roomFor(text.size());
        copy(to, text.data(), text.size());
        end_ = to + text.size();
    }

    /// Appends `text` if it is all ASCII and holds no NUL, as most values are. False, with nothing
    /// appended, if not. What is short is tested and copied by the same loads.
    bool appendPlain(std::string_view text) {
        const std::size_t size = text.size();
        if (size > 16) {
            return appendLongPlain(text);
        }
        char* const to = roomFor(size);
        const bool plain = size >= 8   ? copyPlainEnds<std::uint64_t>(to, text.data(), size)
                           : size >= 4 ? copyPlainEnds<std::uint32_t>(to, text.data(), size)
                                       : copyPlainBytes(to, text.data(), size);
        end_ = to + (plain ? size : 0);
        return plain;
    }

    /// Makes room for a text of so many bytes.
    void reserve(std::size_t size) {
        if (size > room()) {
            grow(size);
        }
    }

    /// Empties it. The room of a short text is kept for the next.
    void clear() noexcept;

    /// Drops what was appended after the first `size` bytes.
    void truncate(std::size_t size) noexcept {
        assert(size <= this->size());
        end_ = begin_ + size;
    }

    std::size_t size() const noexcept { return static_cast<std::size_t>(end_ - begin_); }
    std::string_view view() const noexcept { return {begin_, size()}; }

    /// The text followed by a NUL, until the next change.
    const char* c_str() noexcept {
        *end_ = '\0';
        return begin_;
    }

    /// The text as a string. A long one is not copied where strings of this kind can adopt a block.
    template <typename Text>
    Text take();

  private:
    // A text with more room than this gives it back early: at most two copies of an output exist
    // at once.
    static constexpr std::size_t longText = 65536;

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
        } else if (size >= 16) {
            size > 32 ? copyEnds<32>(to, from, size) : copyEnds<16>(to, from, size);
        } else if (size >= 4) {
            size >= 8 ? copyEnds<8>(to, from, size) : copyEnds<4>(to, from, size);
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

    // Enough for a line or two, which then cost no allocation.
    static constexpr std::size_t inlineRoom = 255;

    /// Copies the first and the last bytes. True if all of them are plain.
    template <typename Number>
    static bool copyPlainEnds(char* to, const char* from, std::size_t size) {
        constexpr std::uint64_t none = 0x0101010101010101u;
        constexpr std::uint64_t padding = sizeof(Number) == 8 ? 0 : none << 32;
        const std::uint64_t first = loadBytes<Number>(from);
        const std::uint64_t last = loadBytes<Number>(from + size - sizeof(Number));
        copyEnds<sizeof(Number)>(to, from, size);
        return arePlain(first | padding) && arePlain(last | padding);
    }

    static bool copyPlainBytes(char* to, const char* from, std::size_t size) {
        bool plain = true;
        for (std::size_t at = 0; at < size; ++at) {
            to[at] = from[at];
            plain = plain && from[at] != '\0' && static_cast<unsigned char>(from[at]) < 0x80;
        }
        return plain;
    }

    std::size_t room() const noexcept { return static_cast<std::size_t>(limit_ - begin_); }
    bool appendLongPlain(std::string_view text);
    void grow(std::size_t added);
    void shrink() noexcept;
    void forgetBlock() noexcept;

    char* begin_; // inline_, or headroom bytes into a block of malloc
    char* end_;
    char* limit_; // where the last NUL fits
    char inline_[inlineRoom + 1];
};

template <typename Text>
Text text_sink::take() {
    if constexpr (requires { Text::adopt(begin_, size(), room()); }) {
        static_assert(Text::adoptedOffset == headroom);
        if (begin_ != inline_) {
            shrink();
            char* const block = begin_ - headroom;
            const std::size_t length = size();
            const std::size_t capacity = room();
            forgetBlock();
            return Text::adopt(block, length, capacity);
        }
    }
    return Text(begin_, static_cast<unsigned int>(size()));
}

} // namespace kel::Stencilor::internal

#endif
