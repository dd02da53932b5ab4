#include "FailingAllocation.h"

#include "Build.h"

#include <cerrno>
#include <cstdlib>
#include <new>

#if !defined(_WIN32) && !defined(TESTS_THREAD_SANITIZER)
#define TESTS_REPLACE_FUNCTIONS_OF_C
#include <dlfcn.h>
#endif

namespace support {

namespace {

constexpr int never = -1; // what counting down ends with

thread_local int remaining = never;
thread_local bool failed = false;

/// True for the allocation that is to fail.
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

} // namespace support

// The thread sanitizer has its own ones, which cannot be replaced.
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

// The libraries find these first, since they stand in the program.
#ifdef TESTS_REPLACE_FUNCTIONS_OF_C

namespace support {

namespace {

/// The same for a function of C, which says so by `errno`.
bool isItsTurnInC() {
    if (isItsTurn()) {
        errno = ENOMEM;
        return true;
    }
    return false;
}

/// The function of the system, or of the sanitizer, that the one here stands in front of.
template <typename Function>
Function* behind(Function*, const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace
} // namespace support

// Where `realloc` is to make a block, the compiler may call `malloc` at once. The address sanitizer
// needs the one of its own from the first moment of the program, and is built with less of that.
#ifndef TESTS_ADDRESS_SANITIZER
extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t size) noexcept {
    static auto* const next = support::behind(malloc, "malloc");
    return support::isItsTurnInC() ? nullptr : next(size);
}
#endif

extern "C" __attribute__((visibility("default"))) void* realloc(void* block,
                                                                std::size_t size) noexcept {
    static auto* const next = support::behind(realloc, "realloc");
    return support::isItsTurnInC() ? nullptr : next(block, size);
}

extern "C" __attribute__((visibility("default"))) char* realpath(const char* path,
                                                                 char* resolved) noexcept {
    static auto* const next = support::behind(realpath, "realpath");
    return support::isItsTurnInC() ? nullptr : next(path, resolved);
}

#endif
