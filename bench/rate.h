#ifndef BENCH_RATE_H
#define BENCH_RATE_H

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

/// How many times a second the functions are called, all together, a thread for each.
double rate(const std::vector<std::function<std::size_t()>>& renders);

} // namespace bench

#endif
