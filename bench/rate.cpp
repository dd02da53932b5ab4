#include "rate.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace bench {

double rate(const std::vector<std::function<std::size_t()>>& renders) {
    constexpr std::chrono::milliseconds duration{300};
    std::atomic<bool> stop = false;
    std::atomic<unsigned long> rendered = 0;
    std::vector<std::jthread> running;
    const auto begin = std::chrono::steady_clock::now();
    for (const auto& render : renders) {
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

} // namespace bench
