#ifndef BENCH_WORKLOADS_H
#define BENCH_WORKLOADS_H

#include "engines.h"

#include <optional>
#include <string>
#include <vector>

namespace bench {

/// One thing to render: the same page as a template of each engine, and as C++ code.
struct workload {
    std::string name;
    std::string what;
    std::string stencilor;
    std::string ctemplate; // empty where the peers have nothing that compares
    std::string mustache;
    object data;
    std::string included = {}; // the path of the file that the template includes

    /// The limit: code that appends the same bytes to a string, from a struct.
    renderer hand;

    /// Bounds for our time: as a part of the better peer's that parses in every call, as a multiple
    /// of `hand`, and whether no peer with a template parsed beforehand may be faster.
    std::optional<double> ofPeer = {};
    std::optional<double> ofHand = {};
    bool aheadOfParsed = false;
};

std::vector<workload> allWorkloads();

} // namespace bench

#endif
