#include "FailingImport.h"

#include <atomic>
#include <cstdlib>
#include <stdexcept>

namespace support {

namespace {

std::atomic<int> remaining = 0;

bool fails() {
    return --remaining < 0;
}

void* failingMalloc(std::size_t size) {
    return fails() ? nullptr : std::malloc(size);
}

void* failingRealloc(void* block, std::size_t size) {
    return fails() ? nullptr : std::realloc(block, size);
}

} // namespace

FailingImport::FailingImport(const wchar_t* dll, int allowed)
    : malloc_(dll, "malloc", reinterpret_cast<void*>(failingMalloc)),
      realloc_(dll, "realloc", reinterpret_cast<void*>(failingRealloc)) {
    if (!malloc_.isThere() && !realloc_.isThere()) {
        throw std::runtime_error("a DLL that is to run out of memory allocates none");
    }
    remaining = allowed;
}

bool FailingImport::happened() const {
    return remaining < 0;
}

} // namespace support
