#ifndef TOOLS_STENCILOR_COMMANDS_CHECK_H
#define TOOLS_STENCILOR_COMMANDS_CHECK_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// The arguments of `stencilor check`.
struct CheckRequest : Request {
    bool unused = false; ///< also report names in the context that no template uses
};

/// Checks templates and their includes, and writes the findings. Names are only looked up if there
/// is a context or a definition.
/// Errors: throws `Failure`. A template that cannot be read is reported, and the others are
///   checked.
ExitStatus check(const CheckRequest& request);

} // namespace stencilor

#endif
