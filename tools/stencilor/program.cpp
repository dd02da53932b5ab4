#include <CLI/CLI.hpp>
#include <tools/stencilor/command_line.h>
#include <tools/stencilor/files.h>
#include <tools/stencilor/platform.h>
#include <tools/stencilor/program.h>

#include <algorithm>
#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

namespace stencilor {

namespace {

/// Ends a parse that did not lead to a command: with the help or the version, or with an error.
int endParse(const CLI::App& program, const CLI::ParseError& end) {
    if (end.get_name() == "CallForHelp" || end.get_name() == "CallForAllHelp") {
        writeOutput("-", program.help());
        return exitClean;
    }
    if (end.get_name() == "CallForVersion") {
        writeOutput("-", std::string(end.what()) + "\n");
        return exitClean;
    }
    // The parser would first name what is missing where something was misspelt.
    const std::vector<std::string> unknown = program.remaining(true);
    const std::string problem = unknown.empty() ? end.what() : CLI::ExtrasError(unknown).what();
    printError(problem);
    platform::writeStandardError("Run 'stencilor --help' for how to call it.\n");
    return exitFailure;
}

ExitStatus run(const CLI::App& program, const Request& request) {
    const std::string command = program.get_subcommands().front()->get_name();
    if (command == "check") {
        return check(request.check);
    }
    if (command == "names") {
        return names(request.names);
    }
    if (command == "deps") {
        return deps(request.deps);
    }
    return command == "tree" ? tree(request.tree) : render(request.render);
}

int parseAndRun(std::vector<std::string> arguments) {
    CLI::App program;
    Request request;
    defineCommandLine(program, request);
    try {
        std::reverse(arguments.begin(), arguments.end()); // as the parser takes them
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& end) {
        return endParse(program, end);
    }
    return run(program, request);
}

} // namespace

int runProgram(int argc, char** argv) {
    try {
        return parseAndRun(platform::start(argc, argv));
    } catch (const std::bad_alloc&) {
        printError("out of memory");
    } catch (const std::length_error&) {
        printError("a text is longer than 4 GiB - 1 byte");
    } catch (const std::exception& error) {
        printError(error.what());
    }
    return exitFailure;
}

} // namespace stencilor
