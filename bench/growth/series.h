#ifndef BENCH_GROWTH_SERIES_H
#define BENCH_GROWTH_SERIES_H

#include <libStencilor/Stencilor.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// A template and its context of a given size.
struct sample {
    kel::String text;
    std::unique_ptr<kel::Stencilor::ContextDictionary> context;
};

/// One way in which the input of the engine can grow.
struct series {
    std::string name;
    std::size_t smallest;
    std::function<sample(std::size_t size)> make;
};

std::vector<series> allSeries();

} // namespace bench

#endif
