#ifndef LIBSTENCILOR_CONTEXT_BUILD_CONTEXT_H
#define LIBSTENCILOR_CONTEXT_BUILD_CONTEXT_H

#include <libStencilor/Value.h>

#include <cstdint>
#include <memory>

namespace kel::Stencilor::internal {

/// The memory limit for the dotted names of a context, in bytes.
inline constexpr std::uint64_t dotted_names_limit = std::uint64_t{512} << 20;

/// Makes the tree of context classes from a value; `Context` documents the rules and errors.
std::unique_ptr<ContextBase> buildContext(const Value& root, const ContextOptions& options,
                                          std::uint64_t limit = dotted_names_limit);

} // namespace kel::Stencilor::internal

#endif
