#ifndef TOOLS_STENCILOR_COMMANDS_FILES_H
#define TOOLS_STENCILOR_COMMANDS_FILES_H

#include <string>
#include <string_view>

// What the user names: files and in their place `-` for the standard streams. What fails throws
// `Failure`, with the name and the reason.

namespace stencilor {

inline constexpr std::string_view standardStream = "-";

/// What messages call something that is read.
std::string inputName(const std::string& file);

std::string readInput(const std::string& file);

/// Writes a file wholly or not at all.
void writeOutput(const std::string& file, std::string_view text);

} // namespace stencilor

#endif
