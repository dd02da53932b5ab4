#ifndef LIBSTENCILOR_MODERN_RENDER_TEMPLATE_H
#define LIBSTENCILOR_MODERN_RENDER_TEMPLATE_H

#include <libStencilor/Template.h>
#include <libStencilor/modern/parsed_template.h>
#include <libStencilor/modern/piecewise_output.h>
#include <libStencilor/modern/render_state.h>

namespace kel::Stencilor::internal {

/// Renders a whole template. If `write` is not null, it receives the text.
RenderResult renderTemplate(const parsed_template& parsed, const ContextBase& context,
                            const piecewise_output::writer* write, const RenderOptions& options,
                            render_state& state);

} // namespace kel::Stencilor::internal

#endif
