#ifndef TOOLS_STENCILOR_TREE_H
#define TOOLS_STENCILOR_TREE_H

#include <tools/stencilor/failure.h>

#include <string>

namespace stencilor {

/// What `stencilor tree` was asked for.
struct TreeOptions {
    std::string templateFile;
    std::string outputFile = "-";
};

/// Writes the syntax tree of a template, a line for each node. Included files are not looked at.
/// Errors: throws `Failure`.
ExitStatus tree(const TreeOptions& options);

} // namespace stencilor

#endif
