#ifndef BENCH_ENGINES_H
#define BENCH_ENGINES_H

#include "workloads.h"

namespace bench {

/// This engine: text in, `kel::String` out, parsing in every call.
renderer buildOutputRenderer(const workload& work);

/// This engine with a template that is parsed in advance.
renderer templateRenderer(const workload& work);

/// The same in pieces.
renderer renderToRenderer(const workload& work);

/// The same through the C interface.
renderer cRenderer(const workload& work);

/// Make and destroy the context of a workload: from an existing value, and with the classic
/// classes.
std::function<std::size_t()> contextOfValue(const workload& work);
std::function<std::size_t()> contextByHand(const workload& work);

/// A cached template, with its text.
std::shared_ptr<const void> keptTemplate(const std::string& text);

/// Whether a peer's template is parsed in every call, or once in advance.
enum class parsing { everyCall, beforehand };

renderer ctemplateRenderer(const workload& work, parsing when);
renderer mustacheRenderer(const workload& work, parsing when);

/// Writes the files that a page includes into a directory, and backdates them, because engines may
/// not cache recently changed files.
void writeFiles(const std::string& directory, const page& from);

/// Two functions for two threads, which render the same data and discard the result: with
/// `buildOutput`, with one shared template, or with a template each.
enum class sharing { buildOutput, oneTemplate, templateEach };
std::vector<std::function<std::size_t()>> forTwoThreads(const workload& work, sharing what);

} // namespace bench

#endif
