#include <tools/stencilor/shell/ShellFiles.h>

#include <sstream>
#include <string_view>

namespace stencilor {

namespace {

/// Escapes text for the formatter, also at the beginning of a line.
std::string escape(std::string_view text) {
    std::string escaped;
    for (const char byte : text) {
        escaped += byte == '\\' ? "\\e" : byte == '-' ? "\\-" : std::string(1, byte);
    }
    return (escaped.starts_with('.') || escaped.starts_with('\'') ? "\\&" : "") + escaped;
}

std::string bold(std::string_view text) {
    return "\\fB" + escape(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return "\\fI" + escape(text) + "\\fR";
}

std::string synopsis(const CommandInfo& command) {
    std::string line = ".HP\n" + bold("stencilor " + command.name);
    for (const OptionInfo& positional : command.positionals) {
        const std::string name =
            italic(positional.names.front()) + (positional.repeated ? "..." : "");
        line += positional.required ? " " + name : " [" + name + "]";
    }
    return line + " [" + italic("OPTION") + "...]\n";
}

std::string describeOption(const OptionInfo& option) {
    std::string names;
    for (const std::string& name : option.names) {
        names += (names.empty() ? "" : ", ") + bold(name);
    }
    std::string value = option.value.empty() ? "" : " " + italic(option.value);
    std::string choices;
    for (const std::string& choice : option.choices) {
        choices += (choices.empty() ? " (" : ", ") + choice;
    }
    return ".TP\n" + names + value + "\n" + escape(option.description) +
           (choices.empty() ? "" : escape(choices) + ")") + ".\n";
}

/// Notes consist of wrapped paragraphs, and of tables whose rows begin with two spaces.
std::string describeNotes(const std::string& notes) {
    std::istringstream lines(notes);
    std::string text = ".PP\n";
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) {
            text += ".PP\n";
        } else if (line.starts_with("     ")) {
            text += escape(line.substr(5)) + "\n";
        } else if (line.starts_with("  ")) {
            text += ".TP 4\n" + bold(line.substr(2, 1)) + "\n" + escape(line.substr(5)) + "\n";
        } else {
            text += escape(line) + "\n";
        }
    }
    return text;
}

std::string describeCommand(const CommandInfo& command) {
    std::string text = ".SS " + escape(command.name) + "\n" + escape(command.description) + ".\n";
    for (const OptionInfo& positional : command.positionals) {
        text += ".TP\n" + italic(positional.names.front()) + "\n" + escape(positional.description) +
                ".\n";
    }
    for (const OptionInfo& option : command.options) {
        text += describeOption(option);
    }
    return text + (command.notes.empty() ? "" : describeNotes(command.notes));
}

constexpr const char* examples = R"(.SH EXAMPLES
.TP
Render a page with the values of a JSON file:
.B stencilor render page.txt values.json \-o page.out
.TP
Check all pages, and report names that the values do not have:
.B stencilor check \-\-context values.json pages/*.txt
.TP
Create a file of values to fill in:
.B stencilor names page.txt \-\-skeleton > values.json
)";

} // namespace

std::string manualPage(const CommandTable& table) {
    std::string text =
        ".TH STENCILOR 1 \"\" \"stencilor " STENCILOR_VERSION "\" \"User Commands\"\n"
        ".SH NAME\nstencilor \\- render text templates\n"
        ".SH SYNOPSIS\n.nh\n";
    for (const CommandInfo& command : table.commands) {
        text += synopsis(command);
    }
    text += ".hy\n.SH DESCRIPTION\n"
            "Templates are text with tags: \\fB{{ name }}\\fR, \\fB{% if name %}\\fR, "
            "\\fB{% for item in list %}\\fR and \\fB{% include \"path\" %}\\fR.\n"
            "The arguments are template files, or \\fB\\-\\fR for the standard input.\n"
            ".SH OPTIONS\n";
    for (const OptionInfo& option : table.options) {
        text += describeOption(option);
    }
    text += ".SH COMMANDS\n";
    for (const CommandInfo& command : table.commands) {
        text += describeCommand(command);
    }
    return text + examples;
}

} // namespace stencilor
