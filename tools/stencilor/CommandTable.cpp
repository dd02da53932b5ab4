#include <tools/stencilor/CommandNotes.h>
#include <tools/stencilor/CommandTable.h>
#include <tools/stencilor/commands/Check.h>
#include <tools/stencilor/commands/Deps.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Names.h>
#include <tools/stencilor/commands/Render.h>
#include <tools/stencilor/commands/Tree.h>
#include <tools/stencilor/lsp/Serve.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <utility>

namespace stencilor {

namespace {

template <typename Value>
using Choices = std::vector<std::pair<std::string, Value>>;

OptionInfo flag(const std::string& name, const std::string& description, bool& value) {
    return {.names = {name}, .description = description, .set = [&value](const std::string&) {
                value = true;
            }};
}

template <typename Target>
OptionInfo text(const std::vector<std::string>& names, const std::string& value, ValueType type,
                const std::string& description, Target& target) {
    return {.names = names,
            .description = description,
            .value = value,
            .type = type,
            .set = [&target](const std::string& given) { target = given; }};
}

template <typename Value>
OptionInfo choice(const std::string& name, const std::string& value, const std::string& description,
                  const Choices<Value>& choices, Value& target) {
    OptionInfo option{
        .names = {name}, .description = description, .value = value, .type = ValueType::Choice};
    for (const auto& [word, meaning] : choices) {
        option.choices.push_back(word);
    }
    option.set = [choices, &target](const std::string& given) {
        for (const auto& [word, meaning] : choices) {
            if (word == given) {
                target = meaning;
            }
        }
    };
    return option;
}

/// Parses a number, which may end in K, M or G for KiB, MiB or GiB.
std::uint64_t parseCount(const std::string& given) {
    const char* const end = given.data() + given.size();
    std::uint64_t count = 0;
    const auto [rest, failure] = std::from_chars(given.data(), end, count);
    const std::string_view unit(rest, end);
    const unsigned int shift = unit == "K" ? 10 : unit == "M" ? 20 : unit == "G" ? 30 : 0;
    const std::uint64_t result = count << shift;
    if (failure != std::errc() || (shift == 0 && !unit.empty()) || result >> shift != count) {
        throw std::invalid_argument("expected a number, optionally followed by K, M or G");
    }
    return result;
}

OptionInfo limit(const std::string& name, const std::string& value, const std::string& description,
                 std::uint64_t& target) {
    return {.names = {name},
            .description = description,
            .value = value,
            .type = ValueType::Other,
            .set = [&target](const std::string& given) { target = parseCount(given); }};
}

OptionInfo depthLimit(unsigned int& target) {
    const auto set = [&target](const std::string& given) {
        const auto [end, failure] =
            std::from_chars(given.data(), given.data() + given.size(), target);
        if (failure != std::errc() || *end != '\0' || target < 1 || target > 100) {
            throw std::invalid_argument("expected a number from 1 to 100");
        }
    };
    return {.names = {"--max-depth"},
            .description = "Stop if includes are nested deeper than N, at most 100",
            .value = "N",
            .type = ValueType::Other,
            .set = set};
}

/// The template files of a command that takes any number of them.
OptionInfo templates(Request& request) {
    return {.names = {"TEMPLATE"},
            .description = "The template files; - is stdin",
            .value = "TEMPLATE",
            .type = ValueType::File,
            .required = true,
            .repeated = true,
            .set = [&request](const std::string& file) { request.templateFiles.push_back(file); }};
}

void setContext(ContextRequest& context, const std::string& file) {
    if (context.file) {
        throw CallError("more than one context: " + *context.file + " and " + file);
    }
    context.file = file;
}

/// The options of every command.
std::vector<OptionInfo> commonOptions(Request& request, const std::string& context) {
    return {
        {.names = {"--context"},
         .description = context,
         .value = "FILE",
         .type = ValueType::File,
         .set = [&request](const std::string& file) { setContext(request.context, file); }},
        {.names = {"-D"},
         .description = "Add a string to the context; NAME:=JSON adds a JSON value. The last "
                        "definition of a name wins",
         .value = "NAME=VALUE",
         .type = ValueType::Other,
         .repeated = true,
         .set =
             [&request](const std::string& definition) {
                 request.context.definitions.push_back(definition);
             }},
        flag("--positions", "Add index (from 1), first and last to list elements",
             request.context.positions),
        text({"-o", "--output"}, "FILE", ValueType::File,
             "Write to FILE instead of stdout, completely or not at all", request.outputFile),
        text({"--root"}, "DIR", ValueType::Folder,
             "Look up included files in DIR instead of the template's folder", request.root),
        text({"--stdin-name"}, "FILE", ValueType::File,
             "Treat a template on stdin as the content of FILE", request.standardInputName),
        choice<Format>("--format", "FORMAT",
                       "Format of messages, and of results other than rendered text",
                       {{"text", Format::Text}, {"json", Format::Json}, {"sarif", Format::Sarif}},
                       request.format),
        choice<Color>("--color", "WHEN",
                      "When to color messages; auto: on a terminal, unless NO_COLOR is set",
                      {{"auto", Color::Auto}, {"always", Color::Always}, {"never", Color::Never}},
                      request.color),
        flag("--quiet", "Write no messages about templates", request.quiet),
    };
}

void add(std::vector<OptionInfo>& options, std::vector<OptionInfo> more) {
    std::move(more.begin(), more.end(), std::back_inserter(options));
}

/// The standard input can only be read once.
void checkStreams(const Request& request) {
    const auto& files = request.templateFiles;
    const auto templates = std::count(files.begin(), files.end(), standardStream);
    if (templates + (request.context.file == standardStream ? 1 : 0) > 1) {
        throw CallError("only one file can be - (standard input)");
    }
    if (request.standardInputName && templates == 0) {
        throw CallError("--stdin-name needs - as the template");
    }
}

template <typename Request, ExitStatus (*run)(const Request&)>
std::function<ExitStatus()> runner(const std::shared_ptr<Request>& request) {
    return [request] {
        checkStreams(*request);
        return run(*request);
    };
}

/// The description of `--context` in commands that do not render.
constexpr const char* checkedContext = "Also report names that the JSON file FILE does not have";

CommandInfo renderCommand() {
    const auto request = std::make_shared<RenderRequest>();
    CommandInfo command{"render", "Render a template and write the result", renderNotes};
    command.positionals = {
        {.names = {"TEMPLATE"},
         .description = "The template file; - is stdin",
         .value = "TEMPLATE",
         .type = ValueType::File,
         .required = true,
         .set = [request](const std::string& file) { request->templateFiles.push_back(file); }},
        {.names = {"CONTEXT"},
         .description = "The values, a JSON file; - is stdin",
         .value = "CONTEXT",
         .type = ValueType::File,
         .set = [request](const std::string& file) { setContext(request->context, file); }}};
    using kel::Stencilor::Escape;
    command.options = commonOptions(*request, "The same as CONTEXT");
    add(command.options,
        {choice<Escape>(
             "--escape", "KIND", "Escape values for HTML or for JSON strings",
             {{"none", Escape::none()}, {"html", Escape::html()}, {"json", Escape::json()}},
             request->escape),
         flag("--strict", "Write nothing if there are messages", request->strict),
         flag("--watch", "Render again when the template, an include or the context changes",
              request->watch),
         limit("--max-steps", "N", "Stop after N steps", request->limits.steps),
         limit("--max-output", "BYTES", "Stop if the output is longer",
               request->limits.outputBytes),
         limit("--max-templates", "BYTES", "Stop if the templates exceed this size in total",
               request->limits.templateBytes),
         depthLimit(request->limits.includeDepth),
         flag("--trace", "Log to stderr what the engine does", request->trace)});
    command.options.back().hidden = true;
    command.run = [request] {
        checkStreams(*request);
        if (request->watch && (request->templateFiles.front() == standardStream ||
                               request->context.file == standardStream)) {
            throw CallError("--watch cannot read the standard input again");
        }
        return render(*request);
    };
    return command;
}

CommandInfo checkCommand() {
    const auto request = std::make_shared<CheckRequest>();
    CommandInfo command{"check",
                        "Check templates and report errors with their locations",
                        checkNotes,
                        {templates(*request)},
                        commonOptions(*request, checkedContext)};
    add(command.options, {flag("--unused", "Also report names of the context that no template uses",
                               request->unused)});
    command.run = [request] {
        checkStreams(*request);
        if (request->unused && !request->context.isGiven()) {
            throw CallError("--unused needs a context");
        }
        return check(*request);
    };
    return command;
}

CommandInfo namesCommand() {
    const auto request = std::make_shared<NamesRequest>();
    CommandInfo command{"names",
                        "List the names that templates use",
                        namesNotes,
                        {templates(*request)},
                        commonOptions(*request, checkedContext),
                        runner<NamesRequest, names>(request)};
    add(command.options,
        {flag("--skeleton", "Write a JSON context with all these names, to be filled in",
              request->skeleton)});
    return command;
}

CommandInfo depsCommand() {
    const auto request = std::make_shared<DepsRequest>();
    CommandInfo command{"deps",
                        "List the files that templates include",
                        depsNotes,
                        {templates(*request)},
                        commonOptions(*request, checkedContext),
                        runner<DepsRequest, deps>(request)};
    add(command.options, {text({"--depfile"}, "TARGET", ValueType::Other,
                               "Write a Make rule: TARGET depends on the templates and these files",
                               request->target)});
    return command;
}

CommandInfo treeCommand() {
    const auto request = std::make_shared<Request>();
    return {"tree",
            "Print the syntax trees of templates",
            treeNotes,
            {templates(*request)},
            commonOptions(*request, checkedContext),
            runner<Request, tree>(request)};
}

CommandInfo lspCommand() {
    CommandInfo command{"lsp", "Run a language server for an editor", lspNotes};
    // Many clients pass this to every server.
    command.options = {{.names = {"--stdio"},
                        .description = "Use the standard streams; this is always the case",
                        .set = [](const std::string&) {}}};
    command.run = lsp::serve;
    return command;
}

/// Only the description; the parser implements the command.
CommandInfo helpCommand(const std::vector<CommandInfo>& commands) {
    OptionInfo name{.names = {"COMMAND"},
                    .description = "The command; without one, print the general help",
                    .value = "COMMAND",
                    .type = ValueType::Choice};
    for (const CommandInfo& command : commands) {
        name.choices.push_back(command.name);
    }
    return {"help", "Print the help of a command", "", {name}};
}

} // namespace

CommandTable makeCommandTable() {
    CommandTable table;
    table.options = {{.names = {"-h", "--help"}, .description = "Print this help and exit"},
                     {.names = {"--version"}, .description = "Print the version and exit"}};
    table.commands = {renderCommand(), checkCommand(), namesCommand(),
                      depsCommand(),   treeCommand(),  lspCommand()};
    table.commands.push_back(helpCommand(table.commands));
    for (CommandInfo& command : table.commands) {
        command.options.insert(command.options.begin(), table.options.front());
    }
    return table;
}

} // namespace stencilor
