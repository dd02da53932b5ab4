#include <libStencilorAnalysis/names/Dependencies.h>
#include <libStencilorAnalysis/text/JsonText.h>
#include <tools/stencilor/commands/Deps.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/NamedTemplates.h>

#include <algorithm>
#include <iterator>
#include <set>
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

std::string writeJson(const std::vector<std::string>& paths) {
    std::string text;
    for (const std::string& path : paths) {
        text += (text.empty() ? "\n    " : ",\n    ") + jsonString(path);
    }
    return "{\n  \"files\": [" + text + (text.empty() ? "" : "\n  ") + "]\n}\n";
}

std::string writeRule(const DepsRequest& request, const std::vector<std::string>& paths) {
    std::string rule = escapeForMake(*request.target) + ":";
    for (const std::string& file : request.templateFiles) {
        if (file != standardStream) {
            rule += " " + escapeForMake(file);
        }
    }
    for (const std::string& path : paths) {
        rule += " \\\n  " + escapeForMake(path);
    }
    return rule + "\n";
}

std::string write(const DepsRequest& request, const std::vector<std::string>& paths) {
    return request.target                   ? writeRule(request, paths)
           : request.format == Format::Json ? writeJson(paths)
                                            : writeList(paths);
}

} // namespace

ExitStatus deps(const DepsRequest& request) {
    Files files;
    NamedTemplates templates(request, files);
    const std::vector<NamedTemplates::Named> all = templates.openAll();
    if (all.empty()) {
        return exitRejected;
    }
    std::vector<Finding> findings;
    std::vector<std::string> paths;
    std::set<std::string> known;
    for (const NamedTemplates::Named& named : all) {
        Dependencies found(named.file);
        addNew(findings, survey(named.files, named.file, found));
        addNew(findings, templates.findContextFaults(named));
        std::copy_if(found.names().begin(), found.names().end(), std::back_inserter(paths),
                     [&known](const std::string& path) { return known.insert(path).second; });
    }
    const ExitStatus status = printFindings(findings, request);
    files.write(request.outputFile, write(request, paths));
    return status;
}

std::string escapeForMake(std::string_view path) {
    std::string escaped;
    std::size_t backslashes = 0;
    for (const char byte : path) {
        if (byte == '\n' || byte == '\r') {
            throw Failure("a Make rule cannot contain the line break in " + std::string(path));
        }
        if (byte == ' ' || byte == '\t') {
            escaped.append(backslashes + 1,
                           '\\'); // backslashes escape each other
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
