#ifndef TOOLS_STENCILOR_COMMANDS_NAMES_H
#define TOOLS_STENCILOR_COMMANDS_NAMES_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// The arguments of `stencilor names`.
struct NamesRequest : Request {
    bool skeleton = false;
};

/// Writes the names that templates and their includes use, or, as a skeleton, a context with them.
/// Errors: throws `Failure`.
ExitStatus names(const NamesRequest& request);

} // namespace stencilor

#endif
