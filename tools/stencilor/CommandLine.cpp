#include <tools/stencilor/CommandLine.h>
#include <tools/stencilor/CommandNotes.h>
#include <tools/stencilor/CommandOptions.h>

#include <memory>

namespace stencilor {

namespace {

/// A command of the program.
struct Command {
    const char* name;
    const char* summary;
    const char* notes; ///< what the help ends with

    /// Adds the options, and returns what runs the command with what was read.
    std::function<ExitStatus()> (*define)(CLI::App& command);
};

template <typename Request, ExitStatus (*run)(const Request&)>
std::function<ExitStatus()> define(CLI::App& command) {
    const auto request = std::make_shared<Request>();
    addOptions(command, *request);
    return [request] { return run(*request); };
}

const Command commands[] = {
    {"render", "Render a template and write the result", renderNotes,
     define<RenderRequest, render>},
    {"check", "Tell what is wrong with templates, and where", checkNotes,
     define<CheckRequest, check>},
    {"names", "List the names that a template asks a context for", namesNotes,
     define<NamesRequest, names>},
    {"deps", "List the files that a template includes", depsNotes, define<DepsRequest, deps>},
    {"tree", "Print the syntax tree of a template", treeNotes, define<TreeRequest, tree>},
};

} // namespace

std::vector<ParsedCommand> defineCommandLine(CLI::App& program) {
    program.name("stencilor");
    program.description("Renders text templates.");
    program.set_version_flag("--version", "stencilor " STENCILOR_VERSION,
                             "Print the version and exit");
    // A path may begin with a slash on every system.
    program.allow_windows_style_options(false);
    program.require_subcommand(1);
    std::vector<ParsedCommand> parsed;
    for (const Command& command : commands) {
        CLI::App& parser = *program.add_subcommand(command.name, command.summary);
        parser.footer(command.notes);
        parsed.push_back({&parser, command.define(parser)});
    }
    return parsed;
}

} // namespace stencilor
