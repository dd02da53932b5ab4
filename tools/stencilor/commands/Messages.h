#ifndef TOOLS_STENCILOR_COMMANDS_MESSAGES_H
#define TOOLS_STENCILOR_COMMANDS_MESSAGES_H

#include <libStencilorAnalysis/finding/Finding.h>
#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Messages for people. Characters that would control a terminal are escaped.

namespace stencilor {

/// Writes a line that begins with the program's name to the standard error stream.
void printError(std::string_view text);

/// Returns the result of `run`. If it throws, prints the reason and returns the matching status.
int reportFailure(const std::function<int()>& run);

/// Formats findings as requested. Text is colored if the stream shows colors.
std::string formatFindings(const std::vector<kel::Stencilor::Analysis::Finding>& findings,
                           const Request& request, bool standardError);

/// Writes findings to the standard error stream, unless the command is quiet. Returns the exit
/// status of a command that writes its output nevertheless.
ExitStatus printFindings(const std::vector<kel::Stencilor::Analysis::Finding>& findings,
                         const Request& request);

} // namespace stencilor

#endif
