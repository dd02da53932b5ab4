#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <tools/stencilor/commands/Check.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/NamedTemplates.h>

#include <utility>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

void checkTemplate(NamedTemplates& templates, const std::string& file, CheckReport& report) {
    const NamedTemplates::Named named = templates.open(file);
    checkSyntax(named.files, named.file, report);
    if (!named.file.fault().isPresent()) {
        const auto faults = templates.findContextFaults(named);
        report.findings.insert(report.findings.end(), faults.begin(), faults.end());
    }
}

} // namespace

ExitStatus check(const Request& request) {
    Files files;
    NamedTemplates templates(request, files);
    CheckReport report;
    bool failed = false;
    for (const std::string& file : request.templateFiles) {
        try {
            checkTemplate(templates, file, report);
        } catch (const Failure& failure) {
            printError(failure.what());
            failed = true;
        }
    }
    const std::vector<Finding> findings = sortFindings(std::move(report));
    const bool isShown = request.outputFile == standardStream;
    if (!isShown || !request.quiet) {
        Request shown = request;
        shown.color = isShown ? request.color : Color::Never;
        files.write(request.outputFile, formatFindings(findings, shown, false));
    }
    return failed ? exitFailure : needAttention(findings) ? exitMessages : exitClean;
}

} // namespace stencilor
