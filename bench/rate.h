#ifndef BENCH_RATE_H
#define BENCH_RATE_H

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

/// The total number of calls per second, with one thread for each function.
double rate(const std::vector<std::function<std::size_t()>>& renders);

} // namespace bench

#endif
