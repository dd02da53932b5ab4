// Measures how time and memory grow with the size of the input, and writes a table: for each series
// and size, the median time of one call in microseconds, its allocations, and its peak memory in
// bytes. scripts/bench-growth plots it.

#include "../allocations.h"
#include "series.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

namespace {

using namespace bench;

/// Renders once, and discards the result.
void render(const sample& work) {
    kel::String errors;
    buildOutput(work.text, *work.context, errors);
}

/// The median of several runs, each with enough calls to take several milliseconds.
double medianMicroseconds(const sample& work) {
    using clock = std::chrono::steady_clock;
    using microseconds = std::chrono::duration<double, std::micro>;
    constexpr std::size_t runs = 9;
    constexpr microseconds enough{20000};

    std::vector<double> times;
    while (times.size() < runs) {
        const auto begin = clock::now();
        double calls = 0;
        microseconds spent{};
        while (spent < enough) {
            render(work);
            ++calls;
            spent = clock::now() - begin;
        }
        times.push_back(spent.count() / calls);
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[runs / 2];
}

void measure(const series& each, std::size_t size) {
    const sample work = each.make(size);
    render(work); // warm
    startCounting();
    render(work);
    const allocations memory = stopCounting();
    std::printf("%s,%zu,%.3f,%zu,%zu\n", each.name.c_str(), size, medianMicroseconds(work),
                memory.count, memory.peakBytes);
    std::fflush(stdout);
}

} // namespace

int main() {
    // Makes the allocator keep its memory. Otherwise, the memory that it returns to the system
    // between calls, and requests again page by page, would depend on the rest of the process.
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());

    constexpr int decades = 3;
    std::printf("series,size,microseconds,allocations,peak bytes\n");
    for (const series& each : allSeries()) {
        std::size_t size = each.smallest;
        for (int step = 0; step <= decades; ++step, size *= 10) {
            measure(each, size);
        }
    }
}
