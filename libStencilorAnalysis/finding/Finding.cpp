#include <libStencilorAnalysis/finding/Finding.h>
#include <libStencilorAnalysis/finding/Habit.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>
#include <utility>

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

namespace {

Finding describeFault(const TemplateFile& file, const TagFault& found) {
    const SyntaxFault& fault = found.fault;
    Finding finding{.rule = Rule::Syntax,
                    .place = {&file, {fault.offset, fault.offset}},
                    .message = explainFault(file, found)};
    for (std::string& note : findHabits(file, found)) {
        finding.notes.push_back({{&file, found.tag}, std::move(note)});
    }
    if (!fault.block.isEmpty()) {
        finding.notes.push_back({{&file, fault.block}, "opened here"});
    }
    return finding;
}

} // namespace

Finding describeFault(const TemplateFile& file) {
    return describeFault(file, file.faults().faults.front());
}

void describeFaults(const TemplateFile& file, std::vector<Finding>& findings) {
    for (const TagFault& found : file.faults().faults) {
        findings.push_back(describeFault(file, found));
    }
    if (!file.faults().areAll) {
        const Place& last = findings.back().place;
        findings.back().notes.push_back({last, "the rest of the file is not checked"});
    }
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
