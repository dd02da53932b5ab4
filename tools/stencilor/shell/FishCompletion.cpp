#include <tools/stencilor/shell/ShellFiles.h>

#include <string_view>

namespace stencilor {

namespace {

std::string quote(std::string_view text) {
    std::string quoted = "'";
    for (const char byte : text) {
        if (byte == '\'' || byte == '\\') {
            quoted += '\\';
        }
        quoted += byte;
    }
    return quoted + "'";
}

std::string valueOf(const OptionInfo& option) {
    switch (option.type) {
    case ValueType::None:
        return "";
    case ValueType::File:
        return " -r -F";
    case ValueType::Folder:
        return " -x -a '(__fish_complete_directories)'";
    case ValueType::Other:
        return " -x";
    case ValueType::Choice:
        break;
    }
    std::string words;
    for (const std::string& choice : option.choices) {
        words += (words.empty() ? "" : " ") + choice;
    }
    return " -x -a " + quote(words);
}

std::string completeOption(const std::string& condition, const OptionInfo& option) {
    std::string line = "complete -c stencilor -n " + quote(condition);
    for (const std::string& name : option.names) {
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    return line + valueOf(option) + " -d " + quote(option.description) + "\n";
}

} // namespace

std::string fishCompletion(const CommandTable& table) {
    std::string text = "# Fish completion for stencilor.\n\n";
    for (const OptionInfo& option : table.options) {
        text += completeOption("__fish_use_subcommand", option);
    }
    for (const CommandInfo& command : table.commands) {
        text += "\ncomplete -c stencilor -n __fish_use_subcommand -f -a " + command.name + " -d " +
                quote(command.description) + "\n";
        for (const OptionInfo& positional : command.positionals) {
            if (positional.type == ValueType::Choice) {
                text += "complete -c stencilor -n '__fish_seen_subcommand_from " + command.name +
                        "'" + valueOf(positional) + "\n";
            }
        }
        for (const OptionInfo& option : command.options) {
            text += completeOption("__fish_seen_subcommand_from " + command.name, option);
        }
    }
    return text;
}

} // namespace stencilor
