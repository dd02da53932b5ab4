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

/// Renders once and returns how many bytes came out. What it rendered stays until the next call.
/// The contexts are made beforehand and belong to the function.
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
    bool inFiles = false; // parsed beforehand means: the engine keeps and checks files itself

    /// Code that appends the same bytes to a string, from a struct. `buildOutput` is compared with
    /// it where no peer parses in every call.
    renderer hand;

    /// At most this part of the better peer's time.
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
