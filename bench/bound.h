#ifndef BENCH_BOUND_H
#define BENCH_BOUND_H

#include "workloads.h"

#include <optional>

namespace bench {

/// A limit for parser and renderer: code that knows the template and the context, and takes those
/// steps only that every rendering takes. The tree is copied from one that was parsed beforehand
/// and taken apart; each node that is rendered is traced, its name is looked up, its value
/// converted and appended; each node of the top level is decoded and appended to the result.
/// Nothing is parsed, no kind of node is found out (but in prose, texts and names), no scope is
/// entered, and no key is made of a name in a loop.
/// @return nothing for a workload that no such code was written for
std::optional<renderer> boundRenderer(const workload& work);

} // namespace bench

#endif
