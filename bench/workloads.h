#ifndef BENCH_WORKLOADS_H
#define BENCH_WORKLOADS_H

#include "language.h"
#include "model.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Renders once and returns the number of bytes. The output is kept until the next call. The
/// contexts are made in advance and belong to the function.
struct renderer {
    std::function<std::size_t()> render;
    std::function<std::string()> output;
};

/// One thing to render: a page as a template, and as C++ code.
struct workload {
    std::string name;
    std::string what;
    page text;
    object data;
    bool escaped = false; // for HTML, which `buildOutput` cannot do
    bool inFiles = false; // parsed in advance means that the engine caches and checks files itself

    /// Code that appends the same bytes to a string, from a struct. `buildOutput` is compared with
    /// it if no peer parses in every call.
    renderer hand;

    /// The target: at most this fraction of the faster peer's time.
    std::optional<double> buildOutputTarget = {};
    std::optional<double> templateTarget = {};
};

std::vector<workload> allWorkloads();

workload productPage(std::size_t rows);
workload escapedPage();
workload includedRows();
workload manual();

/// Wraps code that appends to a string; `append` owns its data.
template <typename Append>
renderer byHand(Append append) {
    auto last = std::make_shared<std::string>();
    return {[append, last] {
                std::string output;
                append(output);
                *last = std::move(output);
                return last->size();
            },
            [last] { return *last; }};
}

} // namespace bench

#endif
