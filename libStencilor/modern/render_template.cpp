#include <libStencilor/modern/metered_call.h>
#include <libStencilor/modern/render_template.h>
#include <libStencilor/render/content_visit.h>

namespace kel::Stencilor::internal {

namespace {

void renderNodes(const parsed_template& parsed, const ContextBase& context,
                 const render_tools& tools) {
    metered_call call(tools, parsed);
    scope_stack scopes;
    scopes.enter(&context);
    content_visit<metered_call> visitor(call, scopes);
    for (const content& node : parsed.tree.nodes) {
        visitor.dispatch(node);
        tools.text.endNode();
    }
}

} // namespace

RenderResult renderTemplate(const parsed_template& parsed, const ContextBase& context,
                            const piecewise_output::writer* write, const RenderOptions& options,
                            render_state& state) {
    const trace_scope trace(trace_points::buildOutput);
    if (!parsed.names) {
        if (state.wantsMessage()) {
            state.addMessage(RenderMessage::Kind::TemplateRejected, parsed, parsed.faultPlace);
        }
        return state.takeResult(RenderStatus::Rejected);
    }
    piecewise_output text(write, state.outputBytes(), parsed.isUtf8, parsed.text.size());
    escaper escape(options.escape);
    try {
        renderNodes(parsed, context, {state, text, escape});
    } catch (const render_end& end) {
        return state.takeResult(end.status, text.appended());
    }
    const std::uint64_t size = text.appended();
    return state.takeResult(RenderStatus::Complete, size, [&text] { return text.finish(); });
}

} // namespace kel::Stencilor::internal
