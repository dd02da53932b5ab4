#include <tools/stencilor/shell/ShellFiles.h>

#include <string_view>

namespace stencilor {

namespace {

/// Escapes a word in single quotes for `_arguments`.
std::string escapeForZsh(std::string_view text) {
    std::string escaped;
    for (const char byte : text) {
        if (byte == '\'') {
            escaped += "'\\''";
            continue;
        }
        if (byte == ':' || byte == '[' || byte == ']') {
            escaped += '\\';
        }
        escaped += byte;
    }
    return escaped;
}

std::string actionOf(const OptionInfo& option) {
    switch (option.type) {
    case ValueType::None:
        return "";
    case ValueType::File:
        return ":" + option.value + ":_files";
    case ValueType::Folder:
        return ":" + option.value + ":_files -/";
    case ValueType::Other:
        return ":" + escapeForZsh(option.value) + ":";
    case ValueType::Choice:
        break;
    }
    std::string words;
    for (const std::string& choice : option.choices) {
        words += (words.empty() ? "" : " ") + choice;
    }
    return ":" + option.value + ":(" + words + ")";
}

/// An option that may be given once excludes its other name.
std::string optionArgument(const OptionInfo& option) {
    std::string names;
    for (const std::string& name : option.names) {
        names += (names.empty() ? "" : " ") + name;
    }
    const std::string exclusion = option.repeated ? "*" : "(" + names + ")";
    std::string words;
    for (const std::string& name : option.names) {
        words += " \\\n                '" + exclusion + name + "[" +
                 escapeForZsh(option.description) + "]" + actionOf(option) + "'";
    }
    return words;
}

std::string positionalArgument(const OptionInfo& positional, std::size_t number) {
    const std::string place = positional.repeated   ? "*"
                              : positional.required ? std::to_string(number)
                                                    : std::to_string(number) + ":";
    return " \\\n                '" + place + ":" + positional.names.front() +
           (positional.type == ValueType::Choice
                ? actionOf(positional).substr(positional.value.size() + 1)
                : ":_files") +
           "'";
}

} // namespace

std::string zshCompletion(const CommandTable& table) {
    std::string descriptions;
    std::string arguments;
    for (const CommandInfo& command : table.commands) {
        descriptions +=
            "            '" + command.name + ":" + escapeForZsh(command.description) + "'\n";
        arguments += "        " + command.name + ")\n            _arguments -s -S";
        for (const OptionInfo& option : command.options) {
            arguments += optionArgument(option);
        }
        for (std::size_t i = 0; i < command.positionals.size(); ++i) {
            arguments += positionalArgument(command.positionals[i], i + 1);
        }
        arguments += "\n            ;;\n";
    }
    std::string own;
    for (const OptionInfo& option : table.options) {
        own += optionArgument(option);
    }
    return R"(#compdef stencilor

_stencilor() {
    local state line context
    typeset -A opt_args
    _arguments -C)" +
           own + R"( \
                '1:command:->command' \
                '*::argument:->argument'
    case $state in
    command)
        local -a commands
        commands=(
)" + descriptions +
           R"(        )
        _describe -t commands command commands
        ;;
    argument)
        case $words[1] in
)" + arguments +
           R"(        esac
        ;;
    esac
}

_stencilor "$@"
)";
}

} // namespace stencilor
