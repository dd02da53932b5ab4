#include <tools/stencilor/finding.h>
#include <tools/stencilor/finding_format.h>

#include <algorithm>

namespace stencilor {

const char* textOf(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    case Severity::Note:
        break;
    }
    return "note";
}

Finding describeFault(const TemplateFile& file) {
    const SyntaxFault& fault = file.fault();
    Finding finding{.rule = Rule::Syntax,
                    .place = {&file, {fault.offset, fault.offset}},
                    .message = std::string("expected ") + describe(fault.expected)};
    if (!fault.block.isEmpty()) {
        finding.notes.push_back({{&file, fault.block}, "opened here"});
    }
    return finding;
}

bool needAttention(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity() != Severity::Note; });
}

std::string format(const std::vector<Finding>& findings, FindingFormat format) {
    switch (format) {
    case FindingFormat::Text:
        return formatText(findings);
    case FindingFormat::Json:
        return formatJson(findings);
    case FindingFormat::Sarif:
        break;
    }
    return formatSarif(findings);
}

} // namespace stencilor
