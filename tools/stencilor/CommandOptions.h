#ifndef TOOLS_STENCILOR_COMMANDOPTIONS_H
#define TOOLS_STENCILOR_COMMANDOPTIONS_H

#include <tools/stencilor/commands/Check.h>
#include <tools/stencilor/commands/Deps.h>
#include <tools/stencilor/commands/Names.h>
#include <tools/stencilor/commands/Render.h>
#include <tools/stencilor/commands/Tree.h>

#include <CLI/App.hpp>

// The options of each command. They fill in the request, which must stay where it is.

namespace stencilor {

void addOptions(CLI::App& command, RenderRequest& request);
void addOptions(CLI::App& command, CheckRequest& request);
void addOptions(CLI::App& command, NamesRequest& request);
void addOptions(CLI::App& command, DepsRequest& request);
void addOptions(CLI::App& command, TreeRequest& request);

} // namespace stencilor

#endif
