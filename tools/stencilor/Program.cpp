#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/CommandLine.h>
#include <tools/stencilor/Program.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/system/System.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cassert>
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
    printError(kel::Stencilor::Analysis::shorten(problem));
    system::writeStandardError("Run 'stencilor --help' for how to call it.\n");
    return exitFailure;
}

int parseAndRun(std::vector<std::string> arguments) {
    CLI::App program;
    const std::vector<ParsedCommand> commands = defineCommandLine(program);
    try {
        std::reverse(arguments.begin(), arguments.end()); // as the parser takes them
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& end) {
        return endParse(program, end);
    }
    const auto command =
        std::find_if(commands.begin(), commands.end(),
                     [](const ParsedCommand& each) { return each.parser->parsed(); });
    assert(command != commands.end() && "the parser requires a command");
    return command->run();
}

} // namespace

int runProgram(int argc, char** argv) {
    try {
        return parseAndRun(system::start(argc, argv));
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
