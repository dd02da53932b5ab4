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

/// Has high bits exactly where a byte of `word` is 0 or above 127, or follows one that is 0.
constexpr std::uint64_t notPlainBits(std::uint64_t word) noexcept {
    return ((word - onePerByte) | word) & highBits;
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

    text_sink() noexcept { forgetBlock(); }
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

    /// Appends `text` if there is room for it below the bound. False, with nothing appended, if
    /// not.
    bool appendIfRoom(std::string_view text) {
        if (!hasRoomFor(text.size())) {
            return false;
        }
        char* const to = end_; // as far as the compiler knows, what is written could be `end_`
        copy(to, text.data(), text.size());
        end_ = to + text.size();
        return true;
    }

    /// The same, and false where `text` is not all ASCII or holds a NUL, as few values do. 16 bytes
    /// can be read where it begins. What is short is copied and tested without a branch: lengths
    /// are hard to predict.
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

    /// Appends what `write` puts from a place on where there is room for `most` bytes. It returns
    /// the end, or null for nothing. False, with nothing appended, where there is none, or no room.
    template <typename Write>
    bool writeIfRoom(std::size_t most, Write write) {
        if (!hasRoomFor(most)) {
            return false;
        }
        char* const end = write(end_);
        end_ = end == nullptr ? end_ : end;
        return end != nullptr;
    }

    /// How many bytes the text has before `appendIfRoom` answers false; `append` goes on.
    void setBound(std::uint64_t bytes) noexcept {
        bound_ = bytes;
        renewLimit();
    }

    /// Makes room for a text of so many bytes.
    void reserve(std::size_t size) {
        if (size > capacity_) {
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

    /// The first and the last `Count` bytes of `size`, which are all where `size` is at most twice
    /// as much.
    template <std::size_t Count>
    static void copyEnds(char* to, const char* from, std::size_t size) {
        std::memcpy(to, from, Count);
        std::memcpy(to + size - Count, from + size - Count, Count);
    }

    // Enough for a line or two, which then cost no allocation.
    static constexpr std::size_t inlineRoom = 240;

    // There are so many bytes past the room.
    static constexpr std::size_t shortSize = 16;

    // From the place that is so many bytes before the middle, those past as many are set.
    static constexpr std::array<unsigned char, 2 * shortSize> bytesPast = [] {
        std::array<unsigned char, 2 * shortSize> bytes{};
        std::fill(bytes.begin() + shortSize, bytes.end(), static_cast<unsigned char>(0xFF));
        return bytes;
    }();

    /// Copies `shortSize` bytes. True if those of `text` are plain.
    static bool copyPlainShort(char* to, std::string_view text) {
        std::array<std::uint64_t, 2> words;
        static_assert(sizeof(words) == shortSize);
        std::memcpy(words.data(), text.data(), sizeof(words));
        std::memcpy(to, words.data(), sizeof(words));
        std::array<std::uint64_t, 2> past;
        std::memcpy(past.data(), &bytesPast[shortSize - text.size()], sizeof(past));
        return (notPlainBits((words[0] & ~past[0]) | (onePerByte & past[0])) |
                notPlainBits((words[1] & ~past[1]) | (onePerByte & past[1]))) == 0;
    }

    static bool copyPlain(char* to, std::string_view text);
    void appendAndGrow(std::string_view text);
    void grow(std::size_t added);
    void shrink() noexcept;
    void forgetBlock() noexcept;

    /// To be called where the block, the size beyond the bound, or the bound has changed.
    void renewLimit() noexcept {
        const std::uint64_t limit = bound_ < capacity_ ? bound_ : capacity_;
        limit_ = begin_ + (limit < size() ? size() : static_cast<std::size_t>(limit));
    }

    char* begin_; // inline_, or headroom bytes into a block of malloc
    char* end_;
    char* limit_; // where the capacity ends, or the bound if that is lower; never below end_
    std::size_t capacity_; // without the bytes past the room
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
