#ifndef BENCH_ENGINES_H
#define BENCH_ENGINES_H

#include "model.h"

#include <functional>
#include <memory>
#include <string>

namespace bench {

/// Renders once and returns how many bytes came out. What it rendered stays until the next call.
/// The contexts are made beforehand and belong to the function.
struct renderer {
    std::function<std::size_t()> render;
    std::function<std::string()> output;
};

/// This engine: text in, `kel::String` out, parsing in every call.
renderer stencilorRenderer(const std::string& templateText, const object& data);

/// The same with one context for many threads at once: a call drops what it rendered.
std::function<std::size_t()> stencilorForThreads(const std::string& templateText,
                                                 const object& data);

/// Whether a peer's template is parsed in every call, or once beforehand.
enum class parsing { everyCall, beforehand };

renderer ctemplateRenderer(const std::string& templateText, const object& data, parsing when);
renderer mustacheRenderer(const std::string& templateText, const object& data, parsing when);

} // namespace bench

#endif
