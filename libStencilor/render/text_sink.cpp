#include <libStencilor/render/text_sink.h>

#include <algorithm>
#include <new>

namespace kel::Stencilor::internal {

void text_sink::grow(std::size_t added) {
    const std::size_t size = view().size();
    const std::size_t capacity = std::max(size + added, room() * 2);
    const bool wasInline = begin_ == inline_;
    void* const block = std::realloc(wasInline ? nullptr : begin_, capacity);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    begin_ = static_cast<char*>(block);
    if (wasInline) {
        std::memcpy(begin_, inline_, size);
    }
    end_ = begin_ + size;
    limit_ = begin_ + capacity;
}

/// Makes the block, which is not empty, as long as the text.
void text_sink::shrink() noexcept {
    const std::size_t size = view().size();
    void* const block = std::realloc(begin_, std::max<std::size_t>(size, 1));
    if (block != nullptr) { // otherwise it stays as it was
        begin_ = static_cast<char*>(block);
        end_ = limit_ = begin_ + size;
    }
}

} // namespace kel::Stencilor::internal
