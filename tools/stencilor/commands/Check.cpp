#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <libStencilorAnalysis/check/UnusedNames.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/Check.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/NamedTemplates.h>

#include <utility>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

void checkTemplate(NamedTemplates& templates, const std::string& file, CheckReport& report,
                   UnusedNames& unused) {
    const NamedTemplates::Named named = templates.open(file);
    survey(named.files, named.file, unused);
    checkSyntax(named.files, named.file, report);
    if (!named.file.fault().isPresent()) {
        const auto faults = templates.findContextFaults(named);
        report.findings.insert(report.findings.end(), faults.begin(), faults.end());
    }
}

} // namespace

ExitStatus check(const CheckRequest& request) {
    Files files;
    NamedTemplates templates(request, files);
    CheckReport report;
    UnusedNames unused;
    bool failed = false;
    for (const std::string& file : request.templateFiles) {
        try {
            checkTemplate(templates, file, report, unused);
        } catch (const Failure& failure) {
            printError(failure.what());
            failed = true;
        }
    }
    std::vector<Finding> findings = sortFindings(std::move(report));
    const TemplateFile values(request.context.file ? inputName(*request.context.file) : "-D", "");
    if (request.unused && !failed) {
        for (const std::string& name : unused.find(*templates.context())) {
            findings.push_back({.rule = Rule::UnusedName,
                                .place = {&values, {}},
                                .message = "no template uses " + quote(name)});
        }
    }
    const bool isShown = request.outputFile == standardStream;
    if (!isShown || !request.quiet) {
        Request shown = request;
        shown.color = isShown ? request.color : Color::Never;
        files.write(request.outputFile, formatFindings(findings, shown, false));
    }
    return failed ? exitFailure : needAttention(findings) ? exitMessages : exitClean;
}

} // namespace stencilor
