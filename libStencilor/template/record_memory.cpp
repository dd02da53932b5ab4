#include <libStencilor/template/record_memory.h>

#include <algorithm>
#include <cassert>

namespace kel::Stencilor::internal {

namespace {

// Large enough to make the cost of a chunk negligible, small enough for malloc to have it
// available.
constexpr std::size_t largestChunk = 16384;

} // namespace

constinit thread_local record_memory* record_memory::active_ = nullptr;

record_memory::record_memory(std::size_t bytes) noexcept : expected_(bytes), outer_(active_) {
    active_ = this;
}

record_memory::~record_memory() {
    assert(active_ == this); // objects are destroyed in the reverse order of construction
    active_ = outer_;
    if (chunk_ != nullptr) {
        leave(chunk_);
    }
}

void record_memory::release(void* allocated) noexcept {
    header* const before = static_cast<header*>(allocated) - 1;
    if (before->offset == 0) {
        ::operator delete(before);
    } else {
        leave(reinterpret_cast<chunk*>(reinterpret_cast<char*>(before) - before->offset));
    }
}

void* record_memory::allocateAlone(std::size_t size) {
    return new (::operator new(sizeof(header) + size)) header{0, 0} + 1;
}

/// Allocates a chunk for the expected bytes, or some of them, but for at least `size` bytes.
void record_memory::addChunk(std::size_t size) {
    expected_ -= std::min(expected_, used_);
    const std::size_t wanted = std::max(size, std::min(expected_, largestChunk));
    auto* const added = new (::operator new(sizeof(chunk) + wanted)) chunk{1};
    if (chunk_ != nullptr) {
        leave(chunk_);
    }
    chunk_ = added;
    used_ = sizeof(chunk);
    size_ = sizeof(chunk) + wanted;
}

void record_memory::leave(chunk* left) noexcept {
    if (--left->holders == 0) {
        ::operator delete(left);
    }
}

} // namespace kel::Stencilor::internal
