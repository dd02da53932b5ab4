#ifndef TOOLS_STENCILOR_COMMANDS_TREE_H
#define TOOLS_STENCILOR_COMMANDS_TREE_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// Writes the syntax trees of templates, a line for each node, or JSON. Included files are not
/// looked at.
/// Errors: throws `Failure`.
ExitStatus tree(const Request& request);

} // namespace stencilor

#endif
