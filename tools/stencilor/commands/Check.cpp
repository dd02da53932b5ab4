#include <libStencilorAnalysis/check/ContextCheck.h>
#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <tools/stencilor/commands/Check.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/TemplateFolder.h>
#include <tools/stencilor/system/System.h>

#include <optional>
#include <utility>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

/// Without a context, names are not looked up.
void checkTemplate(const NamedTemplates::Named& named,
                   const std::optional<kel::Stencilor::Context>& context, CheckReport& report) {
    checkSyntax(named.files, named.file, report);
    if (context && !named.file.fault().isPresent()) {
        const auto faults =
            findContextFaults(named.files, named.file, *context, ContextWalk::Extent::Whole);
        report.findings.insert(report.findings.end(), faults.begin(), faults.end());
    }
}

std::string format(const std::vector<Finding>& findings, CheckFormat format) {
    switch (format) {
    case CheckFormat::Text:
        return formatText(findings);
    case CheckFormat::Json:
        return formatJson(findings);
    case CheckFormat::Sarif:
        break;
    }
    return formatSarif(findings, system::uriOf);
}

} // namespace

ExitStatus check(const CheckRequest& request) {
    const auto context =
        request.context.isGiven() ? std::optional(makeContext(request.context)) : std::nullopt;
    NamedTemplates templates;
    CheckReport report;
    bool failed = false;
    for (const std::string& name : request.templateFiles) {
        try {
            checkTemplate(templates.open(name, request.root), context, report);
        } catch (const Failure& failure) {
            printError(failure.what());
            failed = true;
        }
    }
    const std::vector<Finding> findings = sortFindings(std::move(report));
    writeOutput(request.outputFile, format(findings, request.format));
    return failed ? exitFailure : needAttention(findings) ? exitMessages : exitClean;
}

} // namespace stencilor
