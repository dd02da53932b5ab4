#ifndef TOOLS_STENCILOR_COMMANDTABLE_H
#define TOOLS_STENCILOR_COMMANDTABLE_H

#include <tools/stencilor/commands/Failure.h>

#include <functional>
#include <string>
#include <vector>

namespace stencilor {

/// The value of an option, or of a positional argument.
enum class ValueType { None, File, Folder, Choice, Other };

/// An option, or a positional argument.
struct OptionInfo {
    std::vector<std::string> names; ///< with their dashes; for a positional argument, its only name
    std::string description;
    std::string value{}; ///< the placeholder for the value in the help; empty for a flag
    ValueType type = ValueType::None;
    std::vector<std::string> choices{};
    bool required = false;
    bool repeated = false;
    bool hidden = false; ///< not shown in the help, nor completed by shells

    /// Called with each value; for a flag, with an empty one.
    /// Errors: throws `CallError`, or `std::invalid_argument` if the value is not a number.
    std::function<void(const std::string& value)> set{};
};

struct CommandInfo {
    std::string name;
    std::string description;
    std::string notes; ///< the end of the help
    std::vector<OptionInfo> positionals{};
    std::vector<OptionInfo> options{};

    /// Runs the command with the values that were set.
    /// Errors: throws `CallError` if the values contradict each other, and what the command throws.
    std::function<ExitStatus()> run{};
};

/// The command line: the source of the parser, its help, the shell completions and the manual page.
struct CommandTable {
    std::vector<OptionInfo> options; ///< of the program itself
    std::vector<CommandInfo> commands;
};

CommandTable makeCommandTable();

} // namespace stencilor

#endif
