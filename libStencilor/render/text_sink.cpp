#include <libStencilor/render/text_sink.h>

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

namespace kel::Stencilor::internal {

namespace {

// Strings count their characters in 32 bits.
constexpr std::size_t longest = std::numeric_limits<std::uint32_t>::max();

} // namespace

bool text_sink::appendLongPlain(std::string_view text) {
    std::size_t at = 0;
    std::uint64_t notPlain = 0;
    const auto test = [&text, &notPlain](std::size_t from) {
        const std::uint64_t word = loadBytes<std::uint64_t>(text.data() + from);
        notPlain |= (word - 0x0101010101010101u) | word;
    };
    for (; at + 8 <= text.size(); at += 8) {
        test(at);
    }
    test(text.size() - 8);
    if ((notPlain & 0x8080808080808080u) != 0) {
        return false;
    }
    append(text);
    return true;
}

void text_sink::clear() noexcept {
    end_ = begin_;
    if (room() > longText) {
        std::free(begin_ - headroom);
        forgetBlock();
    }
}

/// Makes room for `added` bytes and a NUL.
void text_sink::grow(std::size_t added) {
    const std::size_t size = this->size();
    if (added > longest - size) {
        throw std::length_error("the rendered text is longer than 4 GiB - 1 byte");
    }
    const std::size_t capacity = std::max(size + added, std::min(room() * 2, longest));
    const bool wasInline = begin_ == inline_;
    void* const block =
        std::realloc(wasInline ? nullptr : begin_ - headroom, headroom + capacity + 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    begin_ = static_cast<char*>(block) + headroom;
    if (wasInline) {
        std::memcpy(begin_, inline_, size);
    }
    end_ = begin_ + size;
    limit_ = begin_ + capacity;
}

/// Gives back the room that a long text does not take.
void text_sink::shrink() noexcept {
    const std::size_t size = this->size();
    if (room() - size < longText) {
        return;
    }
    void* const block = std::realloc(begin_ - headroom, headroom + size + 1);
    if (block != nullptr) { // otherwise it stays as it was
        begin_ = static_cast<char*>(block) + headroom;
        end_ = begin_ + size;
        limit_ = end_;
    }
}

void text_sink::forgetBlock() noexcept {
    begin_ = end_ = inline_;
    limit_ = inline_ + inlineRoom;
}

} // namespace kel::Stencilor::internal
