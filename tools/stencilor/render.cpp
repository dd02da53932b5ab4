#include <libKel/String.h>
#include <libStencilor/Stencilor.h>

#include <tools/stencilor/context_findings.h>
#include <tools/stencilor/engine_messages.h>
#include <tools/stencilor/files.h>
#include <tools/stencilor/render.h>
#include <tools/stencilor/template_survey.h>
#include <tools/stencilor/trace.h>

#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

namespace {

void printMessages(const std::string& templateFile, std::string_view errors) {
    for (const std::string_view message : splitMessages(errors)) {
        printError(inputName(templateFile) + ": " + shortenQuotation(message));
    }
}

/// In place of the messages: what causes them, and where. To be called before anything is traced.
void explain(const RenderOptions& options, const std::string& text,
             const kel::Stencilor::ContextBase& context) {
    TemplateFiles files;
    const TemplateFile& file = files.add(options.templateFile, text, options.root);
    printFindings(file.fault().isPresent()
                      ? std::vector{describeFault(file)}
                      : findContextFaults(files, file, context, ContextWalk::Extent::Rendered));
}

} // namespace

ExitStatus render(const RenderOptions& options) {
    // Everything is read first: the root holds for whatever is read after it is set.
    const std::string text = readInput(options.templateFile);
    const auto context = makeContext(options.context);
    confineIncludes(includeRoot(options.templateFile, options.root));
    if (options.explain) {
        explain(options, text, context);
    }
    if (options.trace) {
        startTrace();
    }

    kel::String errors;
    const kel::String output = kel::Stencilor::buildOutput(text, context, errors);
    if (!options.explain) {
        printMessages(options.templateFile, errors.view());
    }
    if (isRejection(errors.view())) {
        return exitRejected;
    }
    if (errors.empty() || !options.strict) {
        writeOutput(options.outputFile, output.view());
    }
    return errors.empty() ? exitClean : exitMessages;
}

} // namespace stencilor
