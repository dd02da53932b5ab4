#ifndef TOOLS_STENCILOR_COMMANDS_NAMES_H
#define TOOLS_STENCILOR_COMMANDS_NAMES_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// What `stencilor names` is asked for.
struct NamesRequest : Request {
    bool skeleton = false;
};

/// Writes which names templates and what they include ask a context for; or, as a skeleton, a
/// context that has them.
/// Errors: throws `Failure`.
ExitStatus names(const NamesRequest& request);

} // namespace stencilor

#endif
