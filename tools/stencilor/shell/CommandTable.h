#ifndef TOOLS_STENCILOR_SHELL_COMMANDTABLE_H
#define TOOLS_STENCILOR_SHELL_COMMANDTABLE_H

#include <string>
#include <vector>

namespace stencilor {

/// The value of an option, or of a positional argument.
enum class ValueType { None, File, Folder, Choice, Other };

struct OptionInfo {
    std::vector<std::string> names; ///< with their dashes; of a positional its one name
    std::string description;
    std::string value; ///< what the help calls the value; empty for a flag
    ValueType type = ValueType::None;
    std::vector<std::string> choices{};
    bool required = false;
    bool repeated = false;
};

struct CommandInfo {
    std::string name;
    std::string description;
    std::string notes;
    std::vector<OptionInfo> positionals{};
    std::vector<OptionInfo> options{};
};

/// The command line, as the shells and the manual describe it.
struct CommandTable {
    std::vector<OptionInfo> options; ///< of the program itself
    std::vector<CommandInfo> commands;
};

CommandTable makeCommandTable();

std::string bashCompletion(const CommandTable& table);
std::string zshCompletion(const CommandTable& table);
std::string fishCompletion(const CommandTable& table);
std::string manualPage(const CommandTable& table);

} // namespace stencilor

#endif
