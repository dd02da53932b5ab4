#ifndef TOOLS_STENCILOR_COMMANDLINE_H
#define TOOLS_STENCILOR_COMMANDLINE_H

#include <tools/stencilor/commands/Failure.h>

#include <CLI/App.hpp>

#include <functional>
#include <vector>

namespace stencilor {

/// A command that a parser knows, and what runs it with what the parser has read.
struct ParsedCommand {
    const CLI::App* parser;
    std::function<ExitStatus()> run;
};

/// Gives `program` the commands and options. The help, the shell completions and the manual page
/// are all made of this.
std::vector<ParsedCommand> defineCommandLine(CLI::App& program);

} // namespace stencilor

#endif
