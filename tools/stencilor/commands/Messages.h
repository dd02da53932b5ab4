#ifndef TOOLS_STENCILOR_COMMANDS_MESSAGES_H
#define TOOLS_STENCILOR_COMMANDS_MESSAGES_H

#include <libStencilorAnalysis/finding/Finding.h>
#include <tools/stencilor/commands/Failure.h>

#include <string_view>
#include <vector>

// What people read, on the standard error stream. Characters that a terminal would obey are
// escaped.

namespace stencilor {

/// Writes a line that begins with the program's name.
void printError(std::string_view text);

/// Writes findings, and returns how a command ends that has written its output in spite of them.
ExitStatus printFindings(const std::vector<kel::Stencilor::Analysis::Finding>& findings);

} // namespace stencilor

#endif
