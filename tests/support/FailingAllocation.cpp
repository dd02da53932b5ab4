#include "FailingAllocation.h"

#include "Build.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>

#if !defined(_WIN32) && !defined(TESTS_THREAD_SANITIZER)
#define TESTS_REPLACE_FUNCTIONS_OF_C
#include <dlfcn.h>
#include <malloc.h>
#endif

namespace support {

namespace {

constexpr int never = -1; // the end of the countdown

thread_local int remaining = never;
thread_local bool failed = false;
thread_local std::ptrdiff_t inUse = 0; // bytes
thread_local std::ptrdiff_t mostInUse = 0;

/// True for the allocation that must fail.
[[maybe_unused]] bool isItsTurn() {
    if (remaining == never || remaining-- > 0) {
        return false;
    }
    failed = true;
    return true;
}

[[maybe_unused]] void* allocate(std::size_t size) {
    if (isItsTurn()) {
        throw std::bad_alloc();
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

AllocatedMemory::AllocatedMemory() {
    inUse = 0;
    mostInUse = 0;
}

std::size_t AllocatedMemory::most() const {
    return sanitized ? 0 : static_cast<std::size_t>(mostInUse);
}

} // namespace support

// Those of the thread sanitizer cannot be replaced.
#ifndef TESTS_THREAD_SANITIZER

void* operator new(std::size_t size) {
    return support::allocate(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return support::allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

#endif

// The libraries find these first, because they are in the program.
#ifdef TESTS_REPLACE_FUNCTIONS_OF_C

namespace support {

namespace {

/// The same for a C function, which reports it by `errno`.
bool isItsTurnInC() {
    if (isItsTurn()) {
        errno = ENOMEM;
        return true;
    }
    return false;
}

[[maybe_unused]] void* counted(void* block) {
    inUse += static_cast<std::ptrdiff_t>(::malloc_usable_size(block));
    mostInUse = std::max(mostInUse, inUse);
    return block;
}

/// The function of the system, or of the sanitizer, that this one intercepts.
template <typename Function>
Function* behind(Function*, const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace
} // namespace support

// If `realloc` allocates a new block, the compiler may call `malloc` directly. The address
// sanitizer needs its own functions from the start of the program, so builds with it intercept
// less.
#ifndef TESTS_ADDRESS_SANITIZER

extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t size) noexcept {
    static auto* const next = support::behind(malloc, "malloc");
    return support::isItsTurnInC() ? nullptr : support::counted(next(size));
}

extern "C" __attribute__((visibility("default"))) void free(void* block) noexcept {
    static auto* const next = support::behind(free, "free");
    support::inUse -= static_cast<std::ptrdiff_t>(::malloc_usable_size(block));
    next(block);
}

#endif

extern "C" __attribute__((visibility("default"))) void* realloc(void* block,
                                                                std::size_t size) noexcept {
    static auto* const next = support::behind(realloc, "realloc");
    if (support::isItsTurnInC()) {
        return nullptr;
    }
    const auto former = static_cast<std::ptrdiff_t>(::malloc_usable_size(block));
    void* const moved = next(block, size);
    support::inUse -= moved == nullptr ? 0 : former;
    return support::counted(moved);
}

extern "C" __attribute__((visibility("default"))) char* realpath(const char* path,
                                                                 char* resolved) noexcept {
    static auto* const next = support::behind(realpath, "realpath");
    return support::isItsTurnInC() ? nullptr : next(path, resolved);
}

#endif
