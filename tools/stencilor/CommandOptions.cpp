#include <tools/stencilor/CommandOptions.h>
#include <tools/stencilor/commands/Files.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace stencilor {

namespace {

constexpr const char* templateText = "The template file; - is stdin";

CLI::Option* addTemplate(CLI::App& command, std::string& file) {
    return command.add_option("TEMPLATE", file, templateText)->required()->type_name("");
}

void addFlag(CLI::App& command, const std::string& name, bool& flag, const std::string& text) {
    command.add_flag(name, flag, text)->disable_flag_override();
}

void addContextOptions(CLI::App& command, ContextRequest& context) {
    command
        .add_option("-D", context.definitions,
                    "Add a string, or with NAME:=JSON a JSON value, to the context; the last of a "
                    "name wins")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    addFlag(command, "--positions", context.positions,
            "Give list elements index (from 1), first and last");
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
void checkStreams(const std::vector<std::string>& templates, const ContextRequest& context,
                  const std::string& what) {
    const auto streams = std::count(templates.begin(), templates.end(), standardStream) +
                         (context.file == standardStream ? 1 : 0);
    if (streams > 1) {
        throw CLI::ValidationError(what, "only one of them can be -");
    }
}

} // namespace

void addOptions(CLI::App& command, RenderRequest& request) {
    addTemplate(command, request.templateFile);
    command.add_option("CONTEXT", request.context.file, "The values, a JSON file; - is stdin")
        ->type_name("");
    addContextOptions(command, request.context);
    addOutput(command, request.outputFile);
    addRoot(command, request.root);
    addFlag(command, "--strict", request.strict, "Write nothing where there are messages");
    addFlag(command, "--explain", request.explain,
            "Tell in which line of which file each message has its cause");
    addFlag(command, "--trace", request.trace, "Show on stderr what the engine does");
    command.callback([&request] {
        checkStreams({request.templateFile}, request.context, "TEMPLATE and CONTEXT");
    });
}

void addOptions(CLI::App& command, CheckRequest& request) {
    command.add_option("TEMPLATE", request.templateFiles, "The template files; - is stdin")
        ->required()
        ->type_name("");
    command
        .add_option("--context", request.context.file,
                    "Also tell which names the values in FILE, a JSON file, do not have")
        ->type_name("FILE");
    addContextOptions(command, request.context);
    addFormat<CheckFormat>(
        command, request.format,
        {{"text", CheckFormat::Text}, {"json", CheckFormat::Json}, {"sarif", CheckFormat::Sarif}});
    addOutput(command, request.outputFile);
    addRoot(command, request.root);
    command.callback([&request] {
        checkStreams(request.templateFiles, request.context, "TEMPLATE and --context");
    });
}

void addOptions(CLI::App& command, NamesRequest& request) {
    addTemplate(command, request.templateFile);
    CLI::Option* const format = addFormat<NamesFormat>(
        command, request.format, {{"text", NamesFormat::Text}, {"json", NamesFormat::Json}});
    command
        .add_flag_callback(
            "--skeleton", [&request] { request.format = NamesFormat::Skeleton; },
            "Write a context with all these names, a JSON text to fill in")
        ->excludes(format)
        ->disable_flag_override();
    addOutput(command, request.outputFile);
    addRoot(command, request.root);
}

void addOptions(CLI::App& command, DepsRequest& request) {
    addTemplate(command, request.templateFile);
    command
        .add_option("--depfile", request.target,
                    "Write a rule of Make: TARGET depends on the template and on these files")
        ->type_name("TARGET");
    addOutput(command, request.outputFile);
    addRoot(command, request.root);
}

void addOptions(CLI::App& command, TreeRequest& request) {
    addTemplate(command, request.templateFile);
    addOutput(command, request.outputFile);
}

} // namespace stencilor
