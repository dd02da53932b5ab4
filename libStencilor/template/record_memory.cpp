#include <libStencilor/template/record_memory.h>

#include <algorithm>
#include <cassert>
#include <new>

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

void* record_memory::allocate(std::size_t size) {
    record_memory* const active = active_;
    if (active == nullptr) {
        return allocateAlone(size);
    }
    void* const record = active->allocateFromChunk(size);
    static_cast<header*>(record)[-1].number = active->count_++;
    return record;
}

void* record_memory::allocateList(std::size_t size) {
    record_memory* const active = active_;
    return active == nullptr ? allocateAlone(size) : active->allocateFromChunk(size);
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

void* record_memory::allocateFromChunk(std::size_t size) {
    const std::size_t taken = sizeof(header) + size;
    if (taken > size_ - used_) {
        addChunk(taken);
    }
    char* const at = reinterpret_cast<char*>(chunk_) + used_;
    auto* const before = new (at) header{static_cast<std::uint32_t>(used_), 0};
    ++chunk_->holders;
    used_ += taken;
    expected_ -= std::min(expected_, taken);
    return before + 1;
}

/// Allocates a chunk for the expected bytes, or some of them, but for at least `size` bytes.
void record_memory::addChunk(std::size_t size) {
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
