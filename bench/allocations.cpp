#include "allocations.h"

#include <malloc.h>

#include <algorithm>

// The allocator's functions are replaced for the whole process by ones that count and then call
// those of glibc. Calls are never counted while they are timed.

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace {

bool counting = false;
std::size_t count = 0;
std::ptrdiff_t inUse = 0;
std::ptrdiff_t peak = 0;

void* counted(void* block) {
    if (counting && block != nullptr) {
        ++count;
        inUse += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
        peak = std::max(peak, inUse);
    }
    return block;
}

void released(void* block) {
    if (counting && block != nullptr) {
        inUse -= static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    }
}

} // namespace

extern "C" {
void* malloc(std::size_t size) noexcept {
    return counted(__libc_malloc(size));
}
void* calloc(std::size_t number, std::size_t size) noexcept {
    return counted(__libc_calloc(number, size));
}
void* realloc(void* block, std::size_t size) noexcept {
    released(block);
    return counted(__libc_realloc(block, size));
}
void free(void* block) noexcept {
    released(block);
    __libc_free(block);
}
}

namespace bench {

void startCounting() {
    count = 0;
    inUse = 0;
    peak = 0;
    counting = true;
}

allocations stopCounting() {
    counting = false;
    return {count, static_cast<std::size_t>(peak),
            static_cast<std::size_t>(std::max<std::ptrdiff_t>(inUse, 0))};
}

} // namespace bench
