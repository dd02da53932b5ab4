// Renders with one thread and with two at once, from one context, and tells how much more two
// render. The two ways take turns; the best turn of each counts, since what disturbs the machine
// only ever takes time away.

#include "workloads.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

namespace {

using namespace bench;

/// How many times a second `threads` threads render, all together.
double rate(const std::function<std::size_t()>& render, unsigned int threads) {
    constexpr std::chrono::milliseconds duration{300};
    std::atomic<bool> stop = false;
    std::atomic<unsigned long> rendered = 0;
    std::vector<std::jthread> running;
    const auto begin = std::chrono::steady_clock::now();
    for (unsigned int count = 0; count < threads; ++count) {
        running.emplace_back([&] {
            unsigned long own = 0;
            for (; !stop; ++own) {
                render();
            }
            rendered += own;
        });
    }
    std::this_thread::sleep_for(duration);
    stop = true;
    running.clear();
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin;
    return static_cast<double>(rendered) / spent.count();
}

} // namespace

int main() {
    constexpr int turns = 9;
    std::printf("renderings a second; two threads on two processors, tracing off\n");
    std::printf("  %-8s %14s %14s %8s\n", "", "one thread", "two threads", "ratio");
    for (const workload& work : allWorkloads()) {
        const auto render = stencilorForThreads(work.stencilor, work.data);
        double one = 0;
        double two = 0;
        for (int turn = 0; turn < turns; ++turn) {
            one = std::max(one, rate(render, 1));
            two = std::max(two, rate(render, 2));
        }
        std::printf("  %-8s %14.1f %14.1f %8.2f\n", work.name.c_str(), one, two, two / one);
    }
}
