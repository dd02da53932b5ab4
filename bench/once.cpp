// Renders one workload with this engine some number of times, for tools that count instructions.

#include "engines.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

int main(int argc, char** argv) {
    using namespace bench;

    const std::map<std::string, renderer (*)(const workload&)> calls = {
        {"buildOutput", buildOutputRenderer}, {"Template", templateRenderer}, {"C", cRenderer}};
    const auto call = calls.find(argc == 4 ? argv[2] : "");
    if (call == calls.end()) {
        std::fprintf(stderr, "usage: %s WORKLOAD buildOutput|Template|C COUNT\n", argv[0]);
        return 2;
    }
    for (const workload& work : allWorkloads()) {
        if (work.name != argv[1]) {
            continue;
        }
        const renderer made = call->second(work);
        for (int left = std::atoi(argv[3]); left > 0; --left) {
            if (made.render() == 0) {
                return 1;
            }
        }
        return 0;
    }
    std::fprintf(stderr, "%s: there is no workload '%s'\n", argv[0], argv[1]);
    return 2;
}
