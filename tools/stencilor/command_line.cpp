#include <CLI/CLI.hpp>
#include <tools/stencilor/command_line.h>
#include <tools/stencilor/command_notes.h>
#include <tools/stencilor/files.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace stencilor {

namespace {

constexpr const char* templateText = "The template file; - is stdin";

CLI::Option* addTemplate(CLI::App& command, std::string& file) {
    return command.add_option("TEMPLATE", file, templateText)->required()->type_name("");
}

void addDefinitions(CLI::App& command, ContextOptions& context) {
    command
        .add_option("-D", context.definitions,
                    "Add a string, or with NAME:=JSON a JSON value, to the context; the last of a "
                    "name wins")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

void addOutput(CLI::App& command, std::string& file) {
    command.add_option("-o,--output", file, "Write FILE, wholly or not at all, instead of stdout")
        ->type_name("FILE");
}

void addRoot(CLI::App& command, std::optional<std::string>& root) {
    command
        .add_option("--root", root,
                    "Look up included files below DIR instead of the template's folder")
        ->type_name("DIR");
}

void addFlag(CLI::App& command, const std::string& name, bool& flag, const std::string& text) {
    command.add_flag(name, flag, text)->disable_flag_override();
}

template <typename Format>
CLI::Option* addFormat(CLI::App& command, Format& format,
                       const std::vector<std::pair<std::string, Format>>& formats) {
    std::vector<std::string> names;
    for (const auto& [name, value] : formats) {
        names.push_back(name);
    }
    const auto choose = [&format, formats](const std::string& chosen) {
        for (const auto& [name, value] : formats) {
            if (name == chosen) {
                format = value;
            }
        }
    };
    return command
        .add_option_function<std::string>("--format", choose,
                                          "How to write the result; the first is the default")
        ->check(CLI::IsMember(names))
        ->type_name("FORMAT");
}

/// The standard input can be read once.
void checkStreams(const std::vector<std::string>& templates, const ContextOptions& context,
                  const std::string& what) {
    const auto streams = std::count(templates.begin(), templates.end(), standardStream) +
                         (context.file == standardStream ? 1 : 0);
    if (streams > 1) {
        throw CLI::ValidationError(what, "only one of them can be -");
    }
}

void defineRender(CLI::App& program, RenderOptions& options) {
    CLI::App& command = *program.add_subcommand("render", "Render a template and write the result");
    command.footer(renderNotes);
    addTemplate(command, options.templateFile);
    command.add_option("CONTEXT", options.context.file, "The values, a JSON file; - is stdin")
        ->type_name("");
    addDefinitions(command, options.context);
    addOutput(command, options.outputFile);
    addRoot(command, options.root);
    addFlag(command, "--strict", options.strict, "Write nothing where there are messages");
    addFlag(command, "--explain", options.explain,
            "Tell in which line of which file each message has its cause");
    addFlag(command, "--trace", options.trace, "Show on stderr what the engine does");
    command.callback([&options] {
        checkStreams({options.templateFile}, options.context, "TEMPLATE and CONTEXT");
    });
}

void defineCheck(CLI::App& program, CheckOptions& options) {
    CLI::App& command =
        *program.add_subcommand("check", "Tell what is wrong with templates, and where");
    command.footer(checkNotes);
    command.add_option("TEMPLATE", options.templateFiles, "The template files; - is stdin")
        ->required()
        ->type_name("");
    command
        .add_option("--context", options.context.file,
                    "Also tell which names the values in FILE, a JSON file, do not have")
        ->type_name("FILE");
    addDefinitions(command, options.context);
    addFormat<FindingFormat>(command, options.format,
                             {{"text", FindingFormat::Text},
                              {"json", FindingFormat::Json},
                              {"sarif", FindingFormat::Sarif}});
    addOutput(command, options.outputFile);
    addRoot(command, options.root);
    command.callback([&options] {
        checkStreams(options.templateFiles, options.context, "TEMPLATE and --context");
    });
}

void defineNames(CLI::App& program, NamesOptions& options) {
    CLI::App& command =
        *program.add_subcommand("names", "List the names that a template asks a context for");
    command.footer(namesNotes);
    addTemplate(command, options.templateFile);
    CLI::Option* const format = addFormat<NamesFormat>(
        command, options.format, {{"text", NamesFormat::Text}, {"json", NamesFormat::Json}});
    command
        .add_flag_callback(
            "--skeleton", [&options] { options.format = NamesFormat::Skeleton; },
            "Write a context with all these names, a JSON text to fill in")
        ->excludes(format)
        ->disable_flag_override();
    addOutput(command, options.outputFile);
    addRoot(command, options.root);
}

void defineDeps(CLI::App& program, DepsOptions& options) {
    CLI::App& command = *program.add_subcommand("deps", "List the files that a template includes");
    command.footer(depsNotes);
    addTemplate(command, options.templateFile);
    command
        .add_option("--depfile", options.target,
                    "Write a rule of Make: TARGET depends on the template and on these files")
        ->type_name("TARGET");
    addOutput(command, options.outputFile);
    addRoot(command, options.root);
}

void defineTree(CLI::App& program, TreeOptions& options) {
    CLI::App& command = *program.add_subcommand("tree", "Print the syntax tree of a template");
    command.footer(treeNotes);
    addTemplate(command, options.templateFile);
    addOutput(command, options.outputFile);
}

} // namespace

void defineCommandLine(CLI::App& program, Request& request) {
    program.name("stencilor");
    program.description("Renders text templates.");
    program.set_version_flag("--version", "stencilor " STENCILOR_VERSION,
                             "Print the version and exit");
    // A path may begin with a slash on every system.
    program.allow_windows_style_options(false);
    program.require_subcommand(1);
    defineRender(program, request.render);
    defineCheck(program, request.check);
    defineNames(program, request.names);
    defineDeps(program, request.deps);
    defineTree(program, request.tree);
}

} // namespace stencilor
