#ifndef TOOLS_STENCILOR_COMMANDS_TREE_H
#define TOOLS_STENCILOR_COMMANDS_TREE_H

#include <tools/stencilor/commands/Failure.h>

#include <string>

namespace stencilor {

/// What `stencilor tree` is asked for.
struct TreeRequest {
    std::string templateFile;
    std::string outputFile = "-";
};

/// Writes the syntax tree of a template, a line for each node. Included files are not looked at.
/// Errors: throws `Failure`.
ExitStatus tree(const TreeRequest& request);

} // namespace stencilor

#endif
