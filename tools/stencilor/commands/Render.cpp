#include <libKel/FileSystem.h>
#include <libKel/String.h>
#include <libStencilor/Stencilor.h>
#include <libStencilorAnalysis/check/ContextCheck.h>
#include <tools/stencilor/commands/EngineMessages.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/Render.h>
#include <tools/stencilor/commands/TemplateFolder.h>
#include <tools/stencilor/commands/Trace.h>

#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

void printMessages(const std::string& templateFile, std::string_view errors) {
    for (const std::string_view message : splitMessages(errors)) {
        printError(inputName(templateFile) + ": " + shortenQuotation(message));
    }
}

/// In place of the messages: what causes them, and where. To be called before anything is traced.
void explain(const RenderRequest& request, const std::string& text,
             const kel::Stencilor::ContextBase& context) {
    NamedTemplates templates;
    const auto [files, file] = templates.add(request.templateFile, text, request.root);
    printFindings(file.fault().isPresent()
                      ? std::vector{describeFault(file)}
                      : findContextFaults(files, file, context, ContextWalk::Extent::Rendered));
}

/// Has the engine look up included files below `root` and nowhere else.
void confineIncludes(const std::string& root) {
    if (!kel::FileSystem::setRoot(root)) {
        failWithoutRoot(root);
    }
}

} // namespace

ExitStatus render(const RenderRequest& request) {
    // Everything is read first: the root holds for whatever is read after it is set.
    const std::string text = readInput(request.templateFile);
    const auto context = makeContext(request.context);
    confineIncludes(includeRoot(request.templateFile, request.root));
    if (request.explain) {
        explain(request, text, context);
    }
    if (request.trace) {
        startTrace();
    }

    kel::String errors;
    const kel::String output = kel::Stencilor::buildOutput(text, context, errors);
    if (!request.explain) {
        printMessages(request.templateFile, errors.view());
    }
    if (isRejection(errors.view())) {
        return exitRejected;
    }
    if (errors.empty() || !request.strict) {
        writeOutput(request.outputFile, output.view());
    }
    return errors.empty() ? exitClean : exitMessages;
}

} // namespace stencilor
