// Renders with one thread and with two at once, from one context, and prints the speedup. The
// measurements alternate, and the best of each counts, because noise can only add time.

#include "engines.h"
#include "rate.h"

#include <algorithm>
#include <cstdio>

int main() {
    using namespace bench;

    constexpr int turns = 9;
    std::printf("renderings a second; two threads on two processors, tracing off\n");
    std::printf("  %-8s %14s %14s %8s\n", "", "one thread", "two threads", "ratio");
    for (const workload& work : allWorkloads()) {
        if (work.escaped) {
            continue;
        }
        const auto renders = forTwoThreads(work, sharing::buildOutput);
        double one = 0;
        double two = 0;
        for (int turn = 0; turn < turns; ++turn) {
            one = std::max(one, rate({renders.front()}));
            two = std::max(two, rate(renders));
        }
        std::printf("  %-8s %14.1f %14.1f %8.2f\n", work.name.c_str(), one, two, two / one);
    }
}
