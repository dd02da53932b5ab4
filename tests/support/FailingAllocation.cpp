#include "FailingAllocation.h"

#include "Build.h"

#include <cstdlib>
#include <new>

namespace support {

namespace {

constexpr int never = -1;

thread_local int remaining = never;
thread_local bool failed = false;

[[maybe_unused]] void* allocate(std::size_t size) {
    if (remaining == 0) {
        remaining = never;
        failed = true;
        throw std::bad_alloc();
    }
    if (remaining > 0) {
        --remaining;
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

} // namespace

FailingAllocation::FailingAllocation(int count) {
    remaining = count;
    failed = false;
}

FailingAllocation::~FailingAllocation() {
    remaining = never;
}

bool FailingAllocation::happened() const {
    return failed;
}

} // namespace support

// The thread sanitizer has its own ones, which cannot be replaced.
#ifndef TESTS_THREAD_SANITIZER

void* operator new(std::size_t size) {
    return support::allocate(size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

#endif
