#include <CLI/CLI.hpp>
#include <tools/stencilor/files.h>
#include <tools/stencilor/platform.h>
#include <tools/stencilor/program.h>
#include <tools/stencilor/render.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <new>
#include <stdexcept>
#include <utility>

namespace stencilor {

namespace {

constexpr const char* renderNotes =
    R"(CONTEXT is a JSON text whose outermost value is an object. Strings and numbers
become strings (numbers as they are written), true and false booleans, arrays
lists, objects dictionaries, null a null entry. A member of a nested object also
has its dotted name ("user.name"), unless there is a member of that very name.
An object with the member "$boolean": true or false is a boolean, and its other
members are what the block has as its innermost names.

With --trace there is a line on the standard error stream for each scope that is
entered, "trace: NAME:LINE", indented by two blanks for each scope around it
(from 40 scopes on their number is shown instead).

Exit status:
  0  rendered without a message
  1  rendered with messages; the output is written, unless --strict is given
  2  a wrong call, a file that cannot be read or written, or bad JSON
  3  the template was rejected; nothing is written)";

/// Takes the template and the context, which cannot both be the standard input.
void checkStreams(const RenderOptions& options) {
    if (options.templateFile == "-" && options.contextFile == "-") {
        throw CLI::ValidationError("TEMPLATE and CONTEXT", "only one of them can be -");
    }
}

void addRender(CLI::App& program, std::function<ExitStatus()>& command) {
    CLI::App* const render =
        program.add_subcommand("render", "Render a template and write the result");
    auto options = std::make_shared<RenderOptions>();
    render->footer(renderNotes);
    render->add_option("TEMPLATE", options->templateFile, "The template file; - is stdin")
        ->required()
        ->type_name("");
    render->add_option("CONTEXT", options->contextFile, "The values, a JSON file; - is stdin")
        ->type_name("");
    render
        ->add_option("-D", options->definitions,
                     "Add a string, or with NAME:=JSON a JSON value, to the context; the last "
                     "of a name wins")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    render
        ->add_option("-o,--output", options->outputFile,
                     "Write FILE, wholly or not at all, instead of stdout")
        ->type_name("FILE");
    render
        ->add_option("--root", options->root,
                     "Look up included files below DIR instead of the template's folder")
        ->type_name("DIR");
    render->add_flag("--strict", options->strict, "Write nothing where there are messages")
        ->disable_flag_override();
    render->add_flag("--trace", options->trace, "Show on stderr what the engine does")
        ->disable_flag_override();
    render->callback([options, &command] {
        checkStreams(*options);
        command = [options] { return stencilor::render(*options); };
    });
}

void printFailure(const std::string& text) {
    platform::writeStandardError("stencilor: " + text + "\n");
}

/// Ends a parse that did not lead to a command: with the help or the version, or with an error.
int endParse(const CLI::App& program, const CLI::ParseError& end) {
    if (end.get_name() == "CallForHelp" || end.get_name() == "CallForAllHelp") {
        writeOutput("-", program.help());
        return exitRendered;
    }
    if (end.get_name() == "CallForVersion") {
        writeOutput("-", std::string(end.what()) + "\n");
        return exitRendered;
    }
    // The parser would first name what is missing where something was misspelt.
    const std::vector<std::string> unknown = program.remaining(true);
    const std::string problem = unknown.empty() ? end.what() : CLI::ExtrasError(unknown).what();
    printFailure(problem + "\nRun 'stencilor --help' for how to call it.");
    return exitFailure;
}

int parseAndRun(std::vector<std::string> arguments) {
    CLI::App program("Renders text templates.", "stencilor");
    program.set_version_flag("--version", "stencilor " STENCILOR_VERSION,
                             "Print the version and exit");
    // A path may begin with a slash on every system.
    program.allow_windows_style_options(false);
    program.require_subcommand(1);
    std::function<ExitStatus()> command;
    addRender(program, command);
    try {
        std::reverse(arguments.begin(), arguments.end()); // as the parser takes them
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& end) {
        return endParse(program, end);
    }
    return command();
}

} // namespace

int runProgram(int argc, char** argv) {
    try {
        return parseAndRun(platform::start(argc, argv));
    } catch (const std::bad_alloc&) {
        printFailure("out of memory");
    } catch (const std::length_error&) {
        printFailure("a text is longer than 4 GiB - 1 byte");
    } catch (const std::exception& error) {
        printFailure(error.what());
    }
    return exitFailure;
}

} // namespace stencilor
