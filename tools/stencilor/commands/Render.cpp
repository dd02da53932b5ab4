#include <libKel/String.h>
#include <tools/stencilor/commands/ContextSource.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/Render.h>
#include <tools/stencilor/commands/RenderMessages.h>
#include <tools/stencilor/commands/RenderedTemplates.h>
#include <tools/stencilor/commands/Trace.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace stencilor {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::RenderOptions;
using kel::Stencilor::RenderResult;
using kel::Stencilor::RenderStatus;

namespace {

/// The limit for included templates; nothing if the main template exceeds the limit on its own.
std::optional<std::uint64_t> bytesForIncludes(std::uint64_t limit, std::uint64_t size) {
    if (limit == 0) {
        return 0;
    }
    if (size > limit) {
        return std::nullopt;
    }
    return std::max<std::uint64_t>(limit - size, 1); // 0 means no limit
}

ExitStatus refuseLongTemplate(const RenderRequest& request, const std::string& name) {
    const TemplateFile unread(name, "");
    printFindings(
        {{.rule = Rule::Limit,
          .place = {&unread, {}},
          .message = "the template exceeds " + std::to_string(request.limits.templateBytes) +
                     " bytes (--max-templates)"}},
        request);
    return exitLimit;
}

ExitStatus statusOf(const RenderResult& result, const std::vector<Finding>& findings) {
    switch (result.status) {
    case RenderStatus::Complete:
        return result.usage.messages == 0 && findings.empty() ? exitClean : exitMessages;
    case RenderStatus::Rejected:
        return exitRejected;
    default:
        return exitLimit;
    }
}

ExitStatus renderOnce(const RenderRequest& request, Files& files) {
    RenderedTemplates templates(request, files);
    const auto context = makeContext(request.context, files);
    const kel::Stencilor::Template& root = templates.root();
    RenderOptions options{.escape = request.escape, .source = &templates, .limits = request.limits};
    const auto bytes = bytesForIncludes(request.limits.templateBytes, root.text().size());
    if (!bytes) {
        return refuseLongTemplate(request, root.name().str());
    }
    options.limits.templateBytes = *bytes;
    if (request.trace) {
        startTrace();
    }
    const RenderResult result = root.render(context, options);
    endTrace(); // describing messages also renders
    const auto findings = describeMessages(request, templates, context, result);
    printFindings(findings, request);
    const ExitStatus status = statusOf(result, findings);
    if (status == exitClean || (status == exitMessages && !request.strict)) {
        files.write(request.outputFile, result.text.view());
    }
    return status;
}

std::string_view describeStatus(int status, bool strict) {
    switch (status) {
    case exitClean:
        return "rendered";
    case exitMessages:
        return strict ? "nothing written, because of --strict" : "rendered with warnings";
    case exitRejected:
        return "nothing written, because the template is malformed";
    case exitLimit:
        return "nothing written, because a limit was reached";
    default:
        return "failed";
    }
}

[[noreturn]] void watch(const RenderRequest& request) {
    for (;;) {
        Files files;
        const int status = reportFailure([&] { return renderOnce(request, files); });
        if (!request.quiet) {
            printError(std::string(describeStatus(status, request.strict)) +
                       "; waiting for a change");
        }
        files.waitForChange();
    }
}

} // namespace

ExitStatus render(const RenderRequest& request) {
    if (request.watch) {
        watch(request);
    }
    Files files;
    return renderOnce(request, files);
}

} // namespace stencilor
