#include <libStencilorAnalysis/text/ShownText.h>
#include <libStencilorAnalysis/text/Suggestion.h>
#include <tools/stencilor/CommandParser.h>
#include <tools/stencilor/CommandTable.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/system/System.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <deque>
#include <stdexcept>
#include <string_view>

namespace stencilor {

namespace {

using kel::Stencilor::Analysis::didYouMean;
using kel::Stencilor::Analysis::KnownWords;
using kel::Stencilor::Analysis::quote;

std::string join(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : separator) + word;
    }
    return text;
}

/// The name used in messages.
const std::string& nameOf(const OptionInfo& option) {
    return option.names.back();
}

std::string suggest(const std::vector<std::string>& known, const std::string& word) {
    return didYouMean(KnownWords(known).findNearest(word));
}

std::vector<std::string> namesOf(const std::vector<OptionInfo>& options) {
    std::vector<std::string> names;
    for (const OptionInfo& option : options) {
        if (!option.hidden) {
            names.insert(names.end(), option.names.begin(), option.names.end());
        }
    }
    return names;
}

/// Passes a value to an option.
void setAndCheck(const OptionInfo& option, const std::string& value) {
    const std::string& name = nameOf(option);
    const auto& choices = option.choices;
    if (value.empty() && (option.type == ValueType::File || option.type == ValueType::Folder)) {
        throw CallError("the file name given for " + name + " is empty");
    }
    if (!choices.empty() && std::find(choices.begin(), choices.end(), value) == choices.end()) {
        throw CallError(name + ": " + quote(value) + " is not one of " + join(choices, ", ") +
                        suggest(choices, value));
    }
    try {
        option.set(value);
    } catch (const std::invalid_argument& error) {
        throw CallError(name + ": " + error.what() + ", not " + quote(value));
    }
}

/// A command with the parser for its arguments.
class ParsedCommand {
  public:
    ParsedCommand(const CommandInfo& command, CLI::App& program)
        : command_(command), parser_(*program.add_subcommand(command.name, command.description)) {
        parser_.group("Commands");
        parser_.footer(command.notes);
        parser_.set_help_flag("-h,--help", "Print this help and exit");
        for (const OptionInfo& option : command.positionals) {
            add(option, nameOf(option));
        }
        for (const OptionInfo& option : command.options) {
            if (option.set) {
                add(option, join(option.names, ","));
            }
        }
    }

    const CommandInfo& info() const { return command_; }
    const CLI::App& parser() const { return parser_; }

    /// Sets the values, and runs the command.
    int run() const {
        for (const Values& values : values_) {
            setAll(values);
        }
        return command_.run();
    }

  private:
    struct Values {
        const OptionInfo* option;
        std::vector<std::string> values{};
        CLI::Option* parsed = nullptr;
    };

    void add(const OptionInfo& option, const std::string& names) {
        Values& values = values_.emplace_back(Values{.option = &option});
        if (option.type == ValueType::None) {
            values.parsed = parser_.add_flag(names, option.description)->disable_flag_override();
        } else {
            const bool positional = nameOf(option).front() != '-';
            values.parsed = parser_.add_option(names, values.values, option.description)
                                ->type_name(positional ? "" : describeValue(option))
                                ->allow_extra_args(positional && option.repeated);
            if (!option.repeated) {
                values.parsed->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
            }
            values.parsed->required(option.required);
        }
        if (option.hidden) {
            values.parsed->group("");
        }
    }

    static std::string describeValue(const OptionInfo& option) {
        return option.choices.empty() ? option.value : join(option.choices, "|");
    }

    static void setAll(const Values& given) {
        const OptionInfo& option = *given.option;
        const std::string& name = nameOf(option);
        const std::size_t count = given.parsed->count();
        if (option.type == ValueType::None) {
            if (count > 0) {
                option.set("");
            }
            return;
        }
        if (count > 1 && !option.repeated) {
            throw CallError(name + " is given twice");
        }
        for (const std::string& value : given.values) {
            setAndCheck(option, value);
        }
    }

    const CommandInfo& command_;
    CLI::App& parser_;
    std::deque<Values> values_;
};

/// The parser of the command line.
class Call {
  public:
    Call() {
        // Paths may begin with a slash on every system.
        program_.allow_windows_style_options(false);
        program_.name("stencilor");
        // The commands share it.
        program_.get_formatter()->label("SUBCOMMAND", "COMMAND");
        program_.get_formatter()->label("Positionals", "Arguments");
        program_.get_formatter()->label("REQUIRED", "(required)");
        program_.require_subcommand(1);
        program_.set_help_flag("-h,--help", table_.options.front().description);
        program_.set_version_flag("--version", "stencilor " STENCILOR_VERSION,
                                  table_.options.back().description);
        for (const CommandInfo& command : table_.commands) {
            commands_.emplace_back(command, program_);
        }
    }

    int run(std::vector<std::string> arguments) {
        try {
            return parseAndRun(std::move(arguments));
        } catch (const CallError& error) {
            printError(error.what());
            const ParsedCommand* const command = parsedCommand();
            system::writeStandardError("Run 'stencilor " +
                                       (command == nullptr ? "" : command->info().name + " ") +
                                       "--help' for usage.\n");
            return exitFailure;
        }
    }

  private:
    int parseAndRun(std::vector<std::string> arguments) {
        if (!arguments.empty() && arguments.front() == "help") {
            return printHelp(arguments);
        }
        try {
            std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
            program_.parse(std::move(reversed)); // which expects the arguments in reverse order
        } catch (const CLI::CallForHelp&) {
            return print(program_.help());
        } catch (const CLI::CallForVersion& version) {
            return print(std::string(version.what()) + "\n");
        } catch (const CLI::RequiredError&) {
            refuseUnknown();
            throw CallError(std::string("no ") +
                            (parsedCommand() == nullptr ? "command" : "TEMPLATE") + " is given");
        } catch (const CLI::ParseError&) {
            refuseUnknown();
            refuseValue(arguments);
        }
        const ParsedCommand* const command = parsedCommand();
        return command->info().run ? command->run() : print(program_.help());
    }

    int printHelp(const std::vector<std::string>& arguments) {
        if (arguments.size() == 1) {
            return print(program_.help());
        }
        if (arguments.size() > 2) {
            throw CallError("unexpected argument " + quote(arguments[2]));
        }
        if (arguments[1].starts_with('-')) {
            return print(commands_.back().parser().help("stencilor"));
        }
        for (const ParsedCommand& command : commands_) {
            if (command.info().name == arguments[1]) {
                return print(command.parser().help("stencilor"));
            }
        }
        refuseCommand(arguments[1]);
    }

    static int print(const std::string& text) {
        Files().write(std::string(standardStream), text);
        return exitClean;
    }

    const ParsedCommand* parsedCommand() const {
        const auto found =
            std::find_if(commands_.begin(), commands_.end(),
                         [](const ParsedCommand& each) { return each.parser().parsed(); });
        return found == commands_.end() ? nullptr : &*found;
    }

    /// Explains why the parser rejected the arguments.
    void refuseUnknown() const {
        const ParsedCommand* const command = parsedCommand();
        const std::vector<std::string> own = program_.remaining();
        const std::vector<std::string> unknown = program_.remaining(true);
        if (!own.empty() && own.front().size() > 1 && own.front().starts_with('-')) {
            refuseOption(own.front(), table_.options);
        }
        if (command == nullptr && !own.empty()) {
            refuseCommand(own.front());
        }
        if (command != nullptr && !unknown.empty()) {
            const auto dashes = std::find(unknown.begin(), unknown.end(), "--");
            const auto option = std::find_if(unknown.begin(), dashes, [](const std::string& each) {
                return each.size() > 1 && each.starts_with('-');
            });
            if (option != dashes) {
                refuseOption(*option, command->info().options);
            }
            throw CallError("unexpected argument " +
                            quote(unknown.front() == "--" ? unknown.back() : unknown.front()));
        }
    }

    [[noreturn]] void refuseCommand(const std::string& name) const {
        std::vector<std::string> names;
        for (const CommandInfo& command : table_.commands) {
            names.push_back(command.name);
        }
        throw CallError("unknown command " + quote(name) + suggest(names, name));
    }

    [[noreturn]] void refuseOption(const std::string& argument,
                                   const std::vector<OptionInfo>& options) const {
        const std::string name = argument.substr(0, argument.find('='));
        const bool isOfCommand =
            &options == &table_.options &&
            std::any_of(table_.commands.begin(), table_.commands.end(), [&](const auto& command) {
                const std::vector<std::string> names = namesOf(command.options);
                return std::find(names.begin(), names.end(), name) != names.end();
            });
        throw CallError(isOfCommand
                            ? quote(name) + " belongs after the command"
                            : "unknown option " + quote(name) + suggest(namesOf(options), name));
    }

    /// Reports a flag with a value, or an option without one, which is always the last argument.
    [[noreturn]] void refuseValue(const std::vector<std::string>& arguments) const {
        const auto& options =
            parsedCommand() == nullptr ? table_.options : parsedCommand()->info().options;
        for (const std::string& argument : arguments) {
            const std::string name = argument.substr(0, argument.find('='));
            const auto option =
                std::find_if(options.begin(), options.end(),
                             [&name](const auto& each) { return nameOf(each) == name; });
            if (name == argument || option == options.end()) {
                continue;
            }
            if (option->type == ValueType::None) {
                throw CallError(name + " takes no value");
            }
            if (argument == name + "=") {
                setAndCheck(*option, "");
            }
        }
        throw CallError(arguments.back() + " needs a value");
    }

    const CommandTable table_ = makeCommandTable();
    CLI::App program_{"Renders text templates."};
    std::deque<ParsedCommand> commands_;
};

} // namespace

int runCall(const std::vector<std::string>& arguments) {
    return Call().run(arguments);
}

} // namespace stencilor
