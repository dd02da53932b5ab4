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
    std::vector<std::string> names; ///< with their dashes; of a positional its one name
    std::string description;
    std::string value{}; ///< what the help calls the value; empty for a flag
    ValueType type = ValueType::None;
    std::vector<std::string> choices{};
    bool required = false;
    bool repeated = false;
    bool hidden = false; ///< neither the help nor the shells know it

    /// Receives each value; for a flag an empty one.
    /// Errors: throws `CallError`, or `std::invalid_argument` where the value is no number.
    std::function<void(const std::string& value)> set{};
};

struct CommandInfo {
    std::string name;
    std::string description;
    std::string notes; ///< what the help ends with
    std::vector<OptionInfo> positionals{};
    std::vector<OptionInfo> options{};

    /// Runs the command with the values that were set.
    /// Errors: throws `CallError` if they do not go together, and what the command throws.
    std::function<ExitStatus()> run{};
};

/// The command line. The parser and its help, the completions of the shells and the manual page are
/// all made of this.
struct CommandTable {
    std::vector<OptionInfo> options; ///< of the program itself
    std::vector<CommandInfo> commands;
};

CommandTable makeCommandTable();

} // namespace stencilor

#endif
