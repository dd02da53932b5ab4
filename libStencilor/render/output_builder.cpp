#include <libStencilor/Stencilor.h>
#include <libStencilor/host/trace.h>
#include <libStencilor/render/classic_call.h>
#include <libStencilor/render/content_visit.h>
#include <libStencilor/template/template_grammar.h>

#include <optional>

namespace kel::Stencilor {

namespace {

using namespace internal;

/// Appends the messages so far to the caller's text.
void moveMessages(text_sink& messages, String& errors) {
    errors += String(messages.c_str());
    messages.clear();
}

/// Renders the top-level nodes. Each part of the tree is freed before the next is built, because
/// a large tree would not stay in the processor's cache. If strings are converted, so are the
/// messages of each node.
template <typename Text>
Text renderNodes(template_grammar& grammar, const Text& input, const ContextBase& context,
                 Text& errors) {
    output_for<Text> text(isWellFormed(input));
    if constexpr (byte_text<Text>) {
        text.reserve(input.size()); // most outputs are longer than their template
    }
    text_sink messages;
    classic_call call(text, &messages);
    scope_stack scopes;
    scopes.enter(&context);
    content_visit<classic_call> visitor(call, scopes);
    for (syntax_tree part; grammar.buildPart(part.nodes); destroyNodes(part.nodes)) {
        for (const content& node : part.nodes) {
            visitor.dispatch(node);
            text.endNode();
            if constexpr (!byte_text<Text>) {
                moveMessages(messages, errors);
            }
        }
        call.forgetNames();
    }
    if (messages.size() > 0) {
        moveMessages(messages, errors);
    }
    return text.take();
}

/// The rendered text, or nothing if the template is rejected.
std::optional<String> renderText(const String& input, const ContextBase& context, String& errors) {
    return withLowerBytes(input, [&](const char* bytes) -> std::optional<String> {
        template_grammar grammar(bytes);
        if (!grammar.recognize()) {
            errors += String(notParsed);
            return std::nullopt;
        }
        return renderNodes(grammar, input, context, errors);
    });
}

} // namespace

String buildOutput(const String& input, const ContextBase& context, String& errors) {
    const trace_scope trace(trace_points::buildOutput);
    std::optional<String> rendered = renderText(input, context, errors);
    if (!rendered) {
        return String("");
    }
    logErrors(errors);
    return *std::move(rendered);
}

String buildOutput(const String& input, const ContextBase& context) {
    String errors;
    return buildOutput(input, context, errors);
}

} // namespace kel::Stencilor
