#ifndef TOOLS_STENCILOR_COMMANDS_CHECK_H
#define TOOLS_STENCILOR_COMMANDS_CHECK_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// Writes what is wrong with templates and what they include. With neither a context nor
/// definitions, names are not looked up.
/// Errors: throws `Failure`; a template that cannot be read is reported, and the others are
/// checked.
ExitStatus check(const Request& request);

} // namespace stencilor

#endif
