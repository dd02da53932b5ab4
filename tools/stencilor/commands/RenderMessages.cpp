#include <libStencilorAnalysis/check/ContextCheck.h>
#include <libStencilorAnalysis/check/TextCheck.h>
#include <tools/stencilor/commands/NamedTemplates.h>
#include <tools/stencilor/commands/RenderMessages.h>

#include <algorithm>
#include <string>

namespace stencilor {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::IncludeSite;
using kel::Stencilor::RenderLimits;
using kel::Stencilor::RenderMessage;
using kel::Stencilor::RenderResult;
using kel::Stencilor::RenderStatus;

namespace {

using MessageKind = RenderMessage::Kind;

/// Renders with more steps are not walked again to explain their messages.
constexpr std::uint64_t mostSteps = 1'000'000;

/// The maximum number of includes that are shown with a message.
constexpr std::size_t mostSites = 3;

Rule ruleOf(MessageKind kind) {
    switch (kind) {
    case MessageKind::ReplacementNotFound:
    case MessageKind::BooleanNotFound:
    case MessageKind::ListNotFound:
        return Rule::MissingName;
    case MessageKind::ReplacementNotString:
    case MessageKind::NotBoolean:
    case MessageKind::NotIterable:
        return Rule::WrongKind;
    case MessageKind::FileNotFound:
        return Rule::MissingInclude;
    case MessageKind::FileNotLoaded:
        return Rule::UnreadableInclude;
    case MessageKind::TemplateRejected:
        return Rule::Syntax;
    default:
        return Rule::Limit;
    }
}

std::string describe(const RenderMessage& message, const RenderLimits& limits) {
    const auto exceed = [](const char* what, std::uint64_t limit, const char* unit,
                           const char* option) {
        return what + std::to_string(limit) + unit + " (" + option + ")";
    };
    switch (message.kind) {
    case MessageKind::StepLimit:
        return exceed("rendering exceeds ", limits.steps, " steps", "--max-steps");
    case MessageKind::OutputLimit:
        return exceed("the output exceeds ", limits.outputBytes, " bytes", "--max-output");
    case MessageKind::TemplateLimit:
        return exceed("the templates exceed ", limits.templateBytes, " bytes", "--max-templates");
    case MessageKind::DepthLimit:
        return exceed("includes are nested deeper than ", limits.includeDepth, "", "--max-depth");
    default:
        return message.text().str();
    }
}

Finding makeFinding(const RenderMessage& message, const RenderLimits& limits,
                    RenderedTemplates& templates) {
    const TemplateFile& file = templates.fileNamed(message.templateName);
    Finding finding{.rule = ruleOf(message.kind),
                    .place = {&file, message.range},
                    .message = describe(message, limits)};
    Place shown = finding.place;
    for (const IncludeSite& site : message.includedFrom) {
        const Place place = {&templates.fileNamed(site.templateName), site.range};
        const bool isNew = place.file != shown.file || place.range.begin != shown.range.begin;
        if (isNew && finding.notes.size() < mostSites) { // a file may include itself
            finding.notes.push_back({place, "included here"});
            shown = place;
        }
    }
    return finding;
}

} // namespace

std::vector<Finding> describeMessages(const RenderRequest& request, RenderedTemplates& templates,
                                      const kel::Stencilor::ContextBase& context,
                                      const RenderResult& result) {
    std::vector<Finding> findings;
    const bool isWalked = !result.messages.empty() && result.status == RenderStatus::Complete &&
                          result.usage.steps <= mostSteps;
    if (isWalked) {
        // The walk knows the values, so it can explain more.
        findings = findContextFaults(templates.files(), templates.rootFile(), context,
                                     ContextWalk::Extent::Rendered);
    }
    std::vector<Finding> reported;
    for (const RenderMessage& message : result.messages) {
        if (message.kind == MessageKind::TemplateRejected) {
            describeFaults(templates.fileNamed(message.templateName), reported);
        } else {
            reported.push_back(makeFinding(message, request.limits, templates));
        }
    }
    addNew(findings, std::move(reported));
    if (const std::uint64_t more = result.usage.messages - result.messages.size();
        more > 0 && !isWalked) {
        Finding& last = findings.back();
        last.notes.push_back(
            {last.place, "and " + std::to_string(more) + " more messages, here or elsewhere"});
    }
    for (const TemplateFile* file : templates.damagedFiles()) {
        checkText(*file, findings);
    }
    if (result.status != RenderStatus::Rejected) {
        for (Finding& finding : findings) {
            if (finding.rule != Rule::Limit) {
                finding.ownSeverity = request.strict ? Severity::Error : Severity::Warning;
            }
        }
    }
    return findings;
}

} // namespace stencilor
