#ifndef TOOLS_STENCILOR_COMMANDPARSER_H
#define TOOLS_STENCILOR_COMMANDPARSER_H

#include <string>
#include <vector>

namespace stencilor {

/// Parses a call and carries it out, or prints what is wrong with it.
/// @return the exit status
/// Errors: throws what the command throws.
int runCall(const std::vector<std::string>& arguments);

} // namespace stencilor

#endif
