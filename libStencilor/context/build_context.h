#ifndef LIBSTENCILOR_CONTEXT_BUILD_CONTEXT_H
#define LIBSTENCILOR_CONTEXT_BUILD_CONTEXT_H

#include <libStencilor/Value.h>

#include <memory>

namespace kel::Stencilor::internal {

/// The tree of context classes that a value becomes; see `Context` for the rules and errors.
std::unique_ptr<ContextBase> buildContext(const Value& root, const ContextOptions& options);

} // namespace kel::Stencilor::internal

#endif
