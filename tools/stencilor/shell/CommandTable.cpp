#include <tools/stencilor/CommandLine.h>
#include <tools/stencilor/shell/CommandTable.h>

#include <CLI/CLI.hpp>

#include <sstream>
#include <utility>

namespace stencilor {

namespace {

/// The words of `FORMAT:{text,json}`.
std::vector<std::string> findChoices(const std::string& type) {
    std::vector<std::string> choices;
    const std::size_t begin = type.find('{');
    if (begin != std::string::npos) {
        std::istringstream list(type.substr(begin + 1, type.find('}') - begin - 1));
        for (std::string choice; std::getline(list, choice, ',');) {
            choices.push_back(choice);
        }
    }
    return choices;
}

ValueType typeOf(const OptionInfo& option, bool positional) {
    if (!option.choices.empty()) {
        return ValueType::Choice;
    }
    return positional || option.value == "FILE" ? ValueType::File
           : option.value == "DIR"              ? ValueType::Folder
           : option.value.empty()               ? ValueType::None
                                                : ValueType::Other;
}

OptionInfo describeOption(const CLI::Option& option) {
    const bool positional = option.get_positional();
    const std::string type = option.get_type_name();
    OptionInfo info;
    if (positional) {
        info.names = {option.get_name(true)};
    } else {
        for (const std::string& name : option.get_snames()) {
            info.names.push_back("-" + name);
        }
        for (const std::string& name : option.get_lnames()) {
            info.names.push_back("--" + name);
        }
    }
    info.description = option.get_description();
    info.value = option.get_items_expected_max() == 0 ? "" : type.substr(0, type.find(':'));
    info.choices = findChoices(type);
    info.type = typeOf(info, positional);
    info.required = option.get_required();
    info.repeated = option.get_items_expected_max() > 1;
    return info;
}

} // namespace

CommandTable makeCommandTable() {
    CLI::App program;
    defineCommandLine(program);
    CommandTable table;
    for (const CLI::Option* option : program.get_options()) {
        table.options.push_back(describeOption(*option));
    }
    for (const CLI::App* command : program.get_subcommands({})) {
        CommandInfo info{command->get_name(), command->get_description(), command->get_footer()};
        for (const CLI::Option* option : command->get_options()) {
            (option->get_positional() ? info.positionals : info.options)
                .push_back(describeOption(*option));
        }
        table.commands.push_back(std::move(info));
    }
    return table;
}

} // namespace stencilor
