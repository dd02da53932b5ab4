#ifndef TOOLS_STENCILOR_COMMANDS_MESSAGES_H
#define TOOLS_STENCILOR_COMMANDS_MESSAGES_H

#include <libStencilorAnalysis/finding/Finding.h>
#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// What people read. Characters that a terminal would obey are escaped.

namespace stencilor {

/// Writes a line that begins with the program's name to the standard error stream.
void printError(std::string_view text);

/// What `run` returns. Where it throws, prints why, and returns the status for it.
int reportFailure(const std::function<int()>& run);

/// Findings in the form that is asked for; as text with colours, if they are shown where it goes.
std::string formatFindings(const std::vector<kel::Stencilor::Analysis::Finding>& findings,
                           const Request& request, bool standardError);

/// Writes findings, if there are any, to the standard error stream; nothing in a quiet call.
/// Returns how a command ends that has written its output in spite of them.
ExitStatus printFindings(const std::vector<kel::Stencilor::Analysis::Finding>& findings,
                         const Request& request);

} // namespace stencilor

#endif
