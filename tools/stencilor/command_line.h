#ifndef TOOLS_STENCILOR_COMMAND_LINE_H
#define TOOLS_STENCILOR_COMMAND_LINE_H

#include <CLI/App.hpp>
#include <tools/stencilor/check.h>
#include <tools/stencilor/deps.h>
#include <tools/stencilor/names.h>
#include <tools/stencilor/render.h>
#include <tools/stencilor/tree.h>

namespace stencilor {

/// What each command is asked for. Only those of the command that was named are filled in.
struct Request {
    RenderOptions render;
    CheckOptions check;
    NamesOptions names;
    DepsOptions deps;
    TreeOptions tree;
};

/// Gives `program` the commands and options, which fill in `request`. Both must stay where they
/// are. The help, the shell completions and the manual page are all made of this.
void defineCommandLine(CLI::App& program, Request& request);

} // namespace stencilor

#endif
