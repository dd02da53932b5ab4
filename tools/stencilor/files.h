#ifndef TOOLS_STENCILOR_FILES_H
#define TOOLS_STENCILOR_FILES_H

#include <string>
#include <string_view>

// What the user names, files and in their place `-` for the standard streams, and what the user
// reads. What fails throws `Failure`, with the name and the reason.

namespace stencilor {

inline constexpr std::string_view standardStream = "-";

/// What messages call something that is read.
std::string inputName(const std::string& file);

std::string readInput(const std::string& file);

/// Writes a file wholly or not at all.
void writeOutput(const std::string& file, std::string_view text);

/// Writes a line to the standard error stream, with the program's name. What a terminal would obey
/// is escaped.
void printError(std::string_view text);

} // namespace stencilor

#endif
