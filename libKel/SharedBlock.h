#ifndef LIBKEL_SHAREDBLOCK_H
#define LIBKEL_SHAREDBLOCK_H

#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdlib>
#include <new>

// The memory blocks for the characters of strings. Not installed.
//
// A block is identified by the address of its first character and by its capacity, which excludes a
// NUL. A block for at least `leastShared` characters can be held by several strings and
// conversions, which then only read it. The number of holders is stored before the characters. A
// smaller block has a single holder and no count, because copying it is as fast as counting.
//
// The blocks come from malloc because realloc moves large ones without copying.

namespace kel::blocks {

using Holders = std::atomic<std::size_t>;

constexpr std::size_t leastShared = 4096;
constexpr std::size_t roomForHolders = 16;
static_assert(roomForHolders % alignof(std::max_align_t) == 0); // preserves the alignment of malloc
static_assert(sizeof(Holders) <= roomForHolders && alignof(Holders) <= roomForHolders);
static_assert(Holders::is_always_lock_free);

constexpr bool hasHolders(std::size_t capacity) noexcept {
    return capacity >= leastShared;
}

constexpr std::size_t roomBefore(std::size_t capacity) noexcept {
    return hasHolders(capacity) ? roomForHolders : 0;
}

/// The number of holders of a block that has a count.
inline Holders& holdersOf(char* block) noexcept {
    return *std::launder(reinterpret_cast<Holders*>(block - roomForHolders));
}

/// Resizes a block with one holder, or null, and returns it. Either both capacities require a
/// count, or neither does.
inline char* resizeBlock(char* block, std::size_t capacity) {
    const std::size_t before = roomBefore(capacity);
    void* const start = block == nullptr ? nullptr : block - before;
    auto* const resized = static_cast<char*>(std::realloc(start, before + capacity + 1));
    if (resized == nullptr) {
        throw std::bad_alloc();
    }
    if (hasHolders(capacity)) {
        new (resized) Holders(1);
    }
    return resized + before;
}

/// Allocates a block with one holder.
inline char* newBlock(std::size_t capacity) {
    return resizeBlock(nullptr, capacity);
}

/// Adds a holder to a block that has a count.
inline void holdBlock(char* block) noexcept {
    [[maybe_unused]] const std::size_t former =
        holdersOf(block).fetch_add(1, std::memory_order_relaxed);
    assert(former > 0 && "a block that nobody holds was freed");
}

/// True if a block that has a count has several holders, who may only read it.
inline bool isHeldInCommon(char* block) noexcept {
    return holdersOf(block).load(std::memory_order_acquire) > 1;
}

/// Removes a holder, and frees the block if it was the last one.
inline void dropBlock(char* block, std::size_t capacity) noexcept {
    if (!hasHolders(capacity) || holdersOf(block).fetch_sub(1, std::memory_order_acq_rel) == 1) {
        std::free(block - roomBefore(capacity));
    }
}

} // namespace kel::blocks

#endif
