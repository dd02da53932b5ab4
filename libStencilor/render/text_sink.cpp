#include <libStencilor/render/text_sink.h>

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

namespace kel::Stencilor::internal {

namespace {

// The size of a string has 32 bits.
constexpr std::size_t longest = std::numeric_limits<std::uint32_t>::max();

} // namespace

/// Copies more than eight bytes. Returns true if all of them are plain.
bool text_sink::copyPlain(char* to, std::string_view text) {
    std::uint64_t found = 0;
    const auto test = [&text, &found](std::size_t at) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + at, sizeof(word));
        found |= notPlainBits(word);
    };
    for (std::size_t at = 0; at + 8 <= text.size(); at += 8) {
        test(at);
    }
    test(text.size() - 8);
    copy(to, text.data(), text.size());
    return found == 0;
}

void text_sink::appendAndGrow(std::string_view text) {
    if (text.size() > capacity_ - size()) {
        grow(text.size());
    }
    std::memcpy(end_, text.data(), text.size());
    end_ += text.size();
    renewLimit();
}

void text_sink::clear() noexcept {
    end_ = begin_;
    if (capacity_ > longText) {
        std::free(begin_ - headroom);
        forgetBlock();
    }
    renewLimit();
}

/// Makes room for `added` bytes and a NUL.
void text_sink::grow(std::size_t added) {
    const std::size_t size = this->size();
    if (added > longest - size) {
        throw std::length_error("the rendered text is longer than 4 GiB - 1 byte");
    }
    const std::size_t capacity = std::max(size + added, std::min(capacity_ * 2, longest));
    const bool wasInline = begin_ == inline_;
    void* const block =
        std::realloc(wasInline ? nullptr : begin_ - headroom, headroom + capacity + shortSize);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    begin_ = static_cast<char*>(block) + headroom;
    if (wasInline) {
        std::memcpy(begin_, inline_, size);
    }
    end_ = begin_ + size;
    capacity_ = capacity;
    renewLimit();
}

/// Releases the unused room of a long text.
void text_sink::shrink() noexcept {
    const std::size_t size = this->size();
    if (capacity_ - size < longText) {
        return;
    }
    void* const block = std::realloc(begin_ - headroom, headroom + size + 1);
    if (block != nullptr) { // otherwise it is unchanged
        begin_ = static_cast<char*>(block) + headroom;
        end_ = begin_ + size;
        capacity_ = size;
        renewLimit();
    }
}

void text_sink::forgetBlock() noexcept {
    begin_ = end_ = inline_;
    capacity_ = inlineRoom;
    renewLimit();
}

} // namespace kel::Stencilor::internal
