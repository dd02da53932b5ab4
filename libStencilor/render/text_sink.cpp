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

/// Copies more than `shortSize` bytes. Returns true if all of them are plain. The last block
/// overlaps the one before.
bool text_sink::copyPlain(char* to, std::string_view text) {
    two_words found{};
    const auto copyBlock = [to, from = text.data(), &found](std::size_t at) {
        two_words words;
        std::memcpy(words.data(), from + at, sizeof(words));
        std::memcpy(to + at, words.data(), sizeof(words));
        found[0] |= notPlainBits(words[0]);
        found[1] |= notPlainBits(words[1]);
    };
    const std::size_t last = text.size() - sizeof(two_words);
    for (std::size_t at = 0; at < last; at += sizeof(two_words)) {
        copyBlock(at);
    }
    copyBlock(last);
    return (found[0] | found[1]) == 0;
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
    if (capacity_ > mostKept) {
        std::free(begin_ - headroom);
        forgetBlock();
    }
    renewLimit();
}

/// Makes room for `added` bytes and a NUL. Most texts are much longer than their template: moving a
/// short one several times would copy more than the text, while room that is not used costs
/// nothing.
void text_sink::grow(std::size_t added) {
    const std::size_t size = this->size();
    if (added > longest - size) {
        throw std::length_error("the rendered text is longer than 4 GiB - 1 byte");
    }
    const std::size_t more = capacity_ * (capacity_ < longText ? 8 : 2);
    const std::size_t capacity = std::max(size + added, std::min(more, longest));
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

/// Releases the unused room of a long text, and that of a shorter one if it is half of the block.
void text_sink::shrink() noexcept {
    const std::size_t size = this->size();
    if (capacity_ - size < std::min(longText, std::max(size, leastAdopted))) {
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
