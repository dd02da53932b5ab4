#ifndef TOOLS_STENCILOR_COMMANDS_TREE_H
#define TOOLS_STENCILOR_COMMANDS_TREE_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// Writes the syntax trees of templates, one line per node, or as JSON. Included files are not
/// read.
/// Errors: throws `Failure`.
ExitStatus tree(const Request& request);

} // namespace stencilor

#endif
