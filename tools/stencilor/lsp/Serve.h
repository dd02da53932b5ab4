#ifndef TOOLS_STENCILOR_LSP_SERVE_H
#define TOOLS_STENCILOR_LSP_SERVE_H

#include <tools/stencilor/commands/Failure.h>

namespace stencilor::lsp {

/// Serves a client on the standard streams until it exits or disconnects.
/// Errors: throws `Failure` if nothing can be sent anymore.
ExitStatus serve();

} // namespace stencilor::lsp

#endif
