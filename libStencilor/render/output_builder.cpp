#include <libStencilor/Stencilor.h>
#include <libStencilor/host/trace.h>
#include <libStencilor/render/content_visit.h>
#include <libStencilor/template/parse_template.h>

namespace kel::Stencilor {

namespace {

using namespace internal;

/// Renders the top-level nodes. Each is decoded on its own, so that malformed bytes at the end of
/// one never join those at the start of the next.
String renderNodes(const content_list& nodes, const ContextBase& context, String& errors) {
    String rendered;
    scope_stack scopes;
    scopes.enter(&context);
    render_result result;
    content_visit visitor(scopes, result);
    String decoded;
    for (const content& node : nodes) {
        visitor.dispatch(node);
        result.output.trim();
        const std::string_view output = result.output.view();
        decoded.UTF8Decode(output.data(), static_cast<unsigned int>(output.size()), false);
        result.output.clear();
        rendered += decoded;
        if (decoded.size() > text_sink::longText) {
            decoded = String();
        }
        errors += String(result.errors.c_str());
        result.errors.clear();
    }
    return rendered;
}

} // namespace

String buildOutput(const String& input, const ContextBase& context, String& errors) {
    const trace_scope trace(trace_points::buildOutput);
    syntax_tree tree;
    if (!parseTemplate(input, tree.nodes)) {
        errors += String(messages::notParsed);
        return String("");
    }
    String rendered = renderNodes(tree.nodes, context, errors);
    takeApart(tree.nodes);
    logErrors(errors);
    return rendered;
}

String buildOutput(const String& input, const ContextBase& context) {
    String errors;
    return buildOutput(input, context, errors);
}

} // namespace kel::Stencilor
