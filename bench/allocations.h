#ifndef BENCH_ALLOCATIONS_H
#define BENCH_ALLOCATIONS_H

#include <cstddef>

namespace bench {

/// What one stretch of code asked of the memory allocator.
struct allocations {
    std::size_t count = 0;
    std::size_t peakBytes = 0; // above what was in use at the beginning
    std::size_t heldBytes = 0; // at the end, likewise
};

/// Counts from here on, in all threads and libraries of the process.
void startCounting();
allocations stopCounting();

} // namespace bench

#endif
