#include <tools/stencilor/shell/ShellFiles.h>

namespace stencilor {

namespace {

std::string join(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : separator) + word;
    }
    return text;
}

std::string namesOf(const std::vector<OptionInfo>& options) {
    std::vector<std::string> names;
    for (const OptionInfo& option : options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return join(names, " ");
}

std::string commandNames(const CommandTable& table) {
    std::vector<std::string> names;
    for (const CommandInfo& command : table.commands) {
        names.push_back(command.name);
    }
    return join(names, " ");
}

/// The completion of an option's value. By default, bash completes files.
std::string valueCases(const CommandInfo& command) {
    std::string cases;
    for (const OptionInfo& option : command.options) {
        if (option.type == ValueType::None) {
            continue;
        }
        for (const std::string& name : option.names) {
            cases += "        " + command.name + ":" + name + ") ";
            if (option.type == ValueType::Choice) {
                cases += "COMPREPLY=($(compgen -W '" + join(option.choices, " ") +
                         "' -- \"$current\")); ";
            } else if (option.type == ValueType::Folder) {
                cases += "compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "
                         "\"$current\"); ";
            }
            cases += "return ;;\n";
        }
    }
    return cases;
}

} // namespace

std::string bashCompletion(const CommandTable& table) {
    std::string values;
    std::string options;
    for (const CommandInfo& command : table.commands) {
        values += valueCases(command);
        std::string offered;
        for (const OptionInfo& positional : command.positionals) {
            offered += positional.choices.empty() ? "" : join(positional.choices, " ");
        }
        options += "        " + command.name + ") words='" + namesOf(command.options) + "'" +
                   (offered.empty() ? "" : " offered='" + offered + "'") + " ;;\n";
    }
    return R"(# Bash completion for stencilor.

_stencilor() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' words offered='' i
    COMPREPLY=()

    # Bash splits "--option=value".
    if [[ $current == '=' ]]; then
        current=''
    elif [[ $before == '=' ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi

    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ ${COMP_WORDS[i]} != -* ]]; then
            command=${COMP_WORDS[i]}
            break
        fi
    done

    case $command:$before in
)" + values +
           R"(    esac

    case $command in
        '') words=')" +
           commandNames(table) + " " + namesOf(table.options) + "' ;;\n" + options +
           R"(    esac
    if [[ $command == '' || $current == -* ]]; then
        COMPREPLY=($(compgen -W "$words" -- "$current"))
    elif [[ $offered != '' ]]; then
        COMPREPLY=($(compgen -W "$offered" -- "$current"))
    fi
}

complete -o bashdefault -o default -F _stencilor stencilor
)";
}

} // namespace stencilor
