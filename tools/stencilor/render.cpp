#include <libKel/FileSystem.h>
#include <libKel/String.h>
#include <libStencilor/Stencilor.h>

#include <libStencilorJson/JsonValue.h>
#include <tools/stencilor/context_source.h>
#include <tools/stencilor/engine_messages.h>
#include <tools/stencilor/files.h>
#include <tools/stencilor/platform.h>
#include <tools/stencilor/render.h>
#include <tools/stencilor/trace.h>

#include <string_view>

namespace stencilor {

namespace {

JsonValue loadContext(const RenderOptions& options) {
    JsonValue context{.kind = JsonValue::Kind::Object};
    if (options.contextFile) {
        context = readContext(inputName(*options.contextFile), readInput(*options.contextFile));
    }
    for (const std::string& definition : options.definitions) {
        applyDefinition(context, definition);
    }
    return context;
}

std::string includeRoot(const RenderOptions& options) {
    if (options.root) {
        return *options.root;
    }
    return options.templateFile == standardStream ? "." : platform::folderOf(options.templateFile);
}

void confineIncludes(const RenderOptions& options) {
    const std::string root = includeRoot(options);
    if (!kel::FileSystem::setRoot(root)) {
        throw Failure(root + ": not a folder that included files can be read from");
    }
}

void printMessages(const std::string& templateFile, std::string_view errors) {
    for (const std::string_view message : splitMessages(errors)) {
        platform::writeStandardError("stencilor: " + inputName(templateFile) + ": " +
                                     std::string(message) + "\n");
    }
}

} // namespace

ExitStatus render(const RenderOptions& options) {
    // Everything is read first: the root holds for whatever is read after it is set.
    const kel::String text(readInput(options.templateFile));
    const auto context = kel::Stencilor::contextFromJsonValue(loadContext(options));
    confineIncludes(options);
    if (options.trace) {
        startTrace();
    }

    kel::String errors;
    const kel::String output = kel::Stencilor::buildOutput(text, *context, errors);
    printMessages(options.templateFile, errors.view());
    if (isRejection(errors.view())) {
        return exitRejected;
    }
    if (errors.empty() || !options.strict) {
        writeOutput(options.outputFile, output.view());
    }
    return errors.empty() ? exitRendered : exitMessages;
}

} // namespace stencilor
