#ifndef BENCH_ALLOCATIONS_H
#define BENCH_ALLOCATIONS_H

#include <cstddef>

namespace bench {

/// The allocations of a piece of code.
struct allocations {
    std::size_t count = 0;
    std::size_t peakBytes = 0; // relative to the start
    std::size_t heldBytes = 0; // at the end, relative to the start
};

/// Starts counting, in all threads and libraries of the process.
void startCounting();
allocations stopCounting();

} // namespace bench

#endif
