// Renders one workload with this engine some number of times, for tools that count instructions.

#include "workloads.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s WORKLOAD COUNT\n", argv[0]);
        return 2;
    }
    for (const bench::workload& work : bench::allWorkloads()) {
        if (work.name != argv[1]) {
            continue;
        }
        const bench::renderer call = bench::stencilorRenderer(work.stencilor, work.data);
        for (int left = std::atoi(argv[2]); left > 0; --left) {
            if (call.render() == 0) {
                return 1;
            }
        }
        return 0;
    }
    std::fprintf(stderr, "%s: there is no workload '%s'\n", argv[0], argv[1]);
    return 2;
}
