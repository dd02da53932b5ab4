#ifndef TOOLS_STENCILOR_COMMANDPARSER_H
#define TOOLS_STENCILOR_COMMANDPARSER_H

#include <string>
#include <vector>

namespace stencilor {

/// Parses the arguments and runs the command, or prints what is wrong with them.
/// @return the exit status
/// Errors: those of the command.
int runCall(const std::vector<std::string>& arguments);

} // namespace stencilor

#endif
