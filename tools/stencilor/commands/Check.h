#ifndef TOOLS_STENCILOR_COMMANDS_CHECK_H
#define TOOLS_STENCILOR_COMMANDS_CHECK_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// What `stencilor check` is asked for.
struct CheckRequest : Request {
    bool unused = false; ///< also report the names of the context that no template uses
};

/// Writes what is wrong with templates and what they include. With neither a context nor
/// definitions, names are not looked up.
/// Errors: throws `Failure`; a template that cannot be read is reported, and the others are
/// checked.
ExitStatus check(const CheckRequest& request);

} // namespace stencilor

#endif
