#ifndef LIBSTENCILOR_RENDER_TEXT_SINK_H
#define LIBSTENCILOR_RENDER_TEXT_SINK_H

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

namespace kel::Stencilor::internal {

constexpr std::uint64_t onePerByte = 0x0101010101010101u;
constexpr std::uint64_t highBits = 0x8080808080808080u;

/// Sets the high bit of exactly the bytes of `word` that are 0, above 127, or follow a 0.
constexpr std::uint64_t notPlainBits(std::uint64_t word) noexcept {
    return ((word - onePerByte) | word) & highBits;
}

/// The text that rendering appends to. Unlike `std::string`, it does not maintain a terminator, so
/// appending is just a test and a copy. Short text needs no allocation, and long text grows by
/// `realloc`, which moves large blocks without copying.
/// Errors: `std::length_error` if it would exceed the maximum size of a `kel::String`.
/// Copying: not possible, because there is one for each rendering.
class text_sink {
  public:
    /// The bytes before the text in an allocated block.
    static constexpr std::size_t headroom = 16;

    text_sink() noexcept = default;
    text_sink(const text_sink&) = delete;
    text_sink& operator=(const text_sink&) = delete;
    ~text_sink() {
        if (begin_ != inline_) {
            std::free(begin_ - headroom);
        }
    }

    void append(std::string_view text) {
        if (!appendIfRoom(text)) {
            appendAndGrow(text);
        }
    }

    /// Appends `text` if there is room below the bound. Otherwise returns false, with nothing
    /// appended.
    bool appendIfRoom(std::string_view text) {
        if (!hasRoomFor(text.size())) {
            return false;
        }
        char* const to = end_; // the compiler must assume that the write could change `end_`
        copy(to, text.data(), text.size());
        end_ = to + text.size();
        return true;
    }

    /// The same, but also returns false if `text` contains a NUL or is not all ASCII, which is rare
    /// for values. 16 bytes must be readable from its beginning. Short text is copied and tested
    /// without a branch, because lengths are hard to predict.
    bool appendPlainIfRoom(std::string_view text) {
        const std::size_t size = text.size();
        if (!hasRoomFor(size)) {
            return false;
        }
        char* const to = end_;
        const bool plain = size > shortSize ? copyPlain(to, text) : copyPlainShort(to, text);
        end_ = to + (plain ? size : 0);
        return plain;
    }

    /// Appends what `write` writes at a position with room for `most` bytes; it returns the end, or
    /// null to append nothing. Returns false, with nothing appended, if it returns null or there is
    /// no room.
    template <typename Write>
    bool writeIfRoom(std::size_t most, Write write) {
        if (!hasRoomFor(most)) {
            return false;
        }
        char* const end = write(end_);
        end_ = end == nullptr ? end_ : end;
        return end != nullptr;
    }

    /// The size of the text at which `appendIfRoom` returns false; `append` ignores it.
    void setBound(std::uint64_t bytes) noexcept {
        bound_ = bytes;
        renewLimit();
    }

    /// Reserves room for text of this size.
    void reserve(std::size_t size) {
        if (size > capacity_) {
            grow(size);
        }
    }

    /// Removes the text. The room of a short text is kept for the next one.
    void clear() noexcept;

    /// Removes everything after the first `size` bytes.
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

    /// The text as a string. A long one is not copied if the string type can adopt a block.
    template <typename Text>
    Text take();

  private:
    // Text with more room than this grows more slowly, and releases it early if unused.
    static constexpr std::size_t longText = 65536;

    // `clear` releases more room than this, so that at most two copies of an output exist at once.
    static constexpr std::size_t mostKept = 8 * longText;

    // Shorter text is copied by `take`, so its room need not be released first.
    static constexpr std::size_t leastAdopted = 4096;

    bool hasRoomFor(std::size_t added) const noexcept {
        return added <= static_cast<std::size_t>(limit_ - end_);
    }

    /// Most pieces are short. Two overlapping moves of a fixed size are much cheaper than a call.
    static void copy(char* to, const char* from, std::size_t size) {
        if (size > 64) {
            std::memcpy(to, from, size);
        } else if (size > 16) {
            size > 32 ? copyEnds<32>(to, from, size) : copyEnds<16>(to, from, size);
        } else if (size >= 4) {
            size >= 8 ? copyEnds<8>(to, from, size) : copyEnds<4>(to, from, size);
        } else if (size > 0) {
            to[0] = from[0];
            to[size / 2] = from[size / 2];
            to[size - 1] = from[size - 1];
        }
    }

    /// Copies the first and the last `Count` of `size` bytes, which are all of them if `size` is at
    /// most twice `Count`.
    template <std::size_t Count>
    static void copyEnds(char* to, const char* from, std::size_t size) {
        std::memcpy(to, from, Count);
        std::memcpy(to + size - Count, from + size - Count, Count);
    }

    // Enough for a line or two without an allocation.
    static constexpr std::size_t inlineRoom = 240;

    // The number of extra bytes after the room.
    static constexpr std::size_t shortSize = 16;

    // Two masks for text of `n` bytes: from `shortSize - n`, its bytes are set and those past it
    // are not; from `2 * shortSize - n`, the opposite. Both are read from memory: if one were
    // computed from the other, the compiler would merge their uses into exclusive ors, whose
    // results valgrind considers undefined.
    static constexpr std::array<unsigned char, 3 * shortSize> masks = [] {
        std::array<unsigned char, 3 * shortSize> bytes{};
        std::fill(bytes.begin(), bytes.begin() + shortSize, static_cast<unsigned char>(0xFF));
        std::fill(bytes.end() - shortSize, bytes.end(), static_cast<unsigned char>(0xFF));
        return bytes;
    }();

    /// Copies `shortSize` bytes. Returns true if those of `text` are plain.
    static bool copyPlainShort(char* to, std::string_view text) {
        static_assert(sizeof(two_words) == shortSize);
        two_words words;
        two_words inside;
        two_words past;
        std::memcpy(words.data(), text.data(), sizeof(words));
        std::memcpy(to, words.data(), sizeof(words));
        std::memcpy(inside.data(), &masks[shortSize - text.size()], sizeof(inside));
        std::memcpy(past.data(), &masks[2 * shortSize - text.size()], sizeof(past));
        return (notPlainBits((words[0] & inside[0]) | (onePerByte & past[0])) |
                notPlainBits((words[1] & inside[1]) | (onePerByte & past[1]))) == 0;
    }

    using two_words = std::array<std::uint64_t, 2>;
    static bool copyPlain(char* to, std::string_view text);
    void appendAndGrow(std::string_view text);
    void grow(std::size_t added);
    void shrink() noexcept;
    void forgetBlock() noexcept;

    /// Call this if the block, the size beyond the bound, or the bound has changed.
    void renewLimit() noexcept {
        const std::uint64_t limit = bound_ < capacity_ ? bound_ : capacity_;
        limit_ = begin_ + (limit < size() ? size() : static_cast<std::size_t>(limit));
    }

    char* begin_ = inline_; // or `headroom` bytes into an allocated block
    char* end_ = inline_;
    // The end of the capacity, or the bound if that is lower; never below `end_`.
    char* limit_ = inline_ + inlineRoom;
    std::size_t capacity_ = inlineRoom; // without the bytes past the room
    std::uint64_t bound_ = std::numeric_limits<std::uint64_t>::max();
    char inline_[inlineRoom + shortSize];
};

template <typename Text>
Text text_sink::take() {
    if constexpr (requires { Text::adopt(begin_, size(), capacity_); }) {
        static_assert(Text::adoptedOffset == headroom);
        if (begin_ != inline_) {
            shrink();
            char* const block = begin_ - headroom;
            const std::size_t length = size();
            const std::size_t capacity = capacity_;
            forgetBlock();
            return Text::adopt(block, length, capacity);
        }
    }
    return Text(begin_, static_cast<unsigned int>(size()));
}

} // namespace kel::Stencilor::internal

#endif
