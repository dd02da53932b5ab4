#include <libStencilorAnalysis/names/Dependencies.h>
#include <tools/stencilor/commands/Deps.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/TemplateFolder.h>

#include <string>
#include <vector>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

std::string writeList(const std::vector<std::string>& paths) {
    std::string text;
    for (const std::string& path : paths) {
        text += path + "\n";
    }
    return text;
}

std::string writeRule(const DepsRequest& request, const std::vector<std::string>& paths) {
    std::string rule = escapeForMake(*request.target) + ":";
    if (request.templateFile != standardStream) {
        rule += " " + escapeForMake(request.templateFile);
    }
    for (const std::string& path : paths) {
        rule += " \\\n  " + escapeForMake(path);
    }
    return rule + "\n";
}

} // namespace

ExitStatus deps(const DepsRequest& request) {
    NamedTemplates templates;
    const auto [files, file] = templates.open(request.templateFile, request.root);
    if (file.fault().isPresent()) {
        printFindings({describeFault(file)});
        return exitRejected;
    }
    Dependencies found(file);
    const ExitStatus status = printFindings(survey(files, file, found));
    writeOutput(request.outputFile,
                request.target ? writeRule(request, found.names()) : writeList(found.names()));
    return status;
}

std::string escapeForMake(std::string_view path) {
    std::string escaped;
    std::size_t backslashes = 0;
    for (const char byte : path) {
        if (byte == '\n' || byte == '\r') {
            throw Failure("a rule of Make cannot hold the line break in " + std::string(path));
        }
        if (byte == ' ' || byte == '\t') {
            escaped.append(backslashes + 1, '\\'); // those before it would escape each other
        } else if (byte == '#') {
            escaped += '\\';
        } else if (byte == '$') {
            escaped += '$';
        }
        escaped += byte;
        backslashes = byte == '\\' ? backslashes + 1 : 0;
    }
    return escaped;
}

} // namespace stencilor
