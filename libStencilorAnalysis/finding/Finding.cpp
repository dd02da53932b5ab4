#include <libStencilorAnalysis/finding/Finding.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>

namespace kel::Stencilor::Analysis {

const char* severityName(Severity severity) {
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

Finding describeFailure(const Inclusion& inclusion) {
    const bool missing = inclusion.to.answer == TemplateReader::Answer::Missing;
    const SyntaxRange path = inclusion.part.name;
    return {.rule = missing ? Rule::MissingInclude : Rule::UnreadableInclude,
            .place = {&inclusion.from, path},
            .message = "included file " + quote(inclusion.from.slice(path)) +
                       (missing ? " does not exist" : " cannot be read")};
}

bool needAttention(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity() != Severity::Note; });
}

} // namespace kel::Stencilor::Analysis
