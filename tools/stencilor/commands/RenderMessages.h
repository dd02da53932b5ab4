#ifndef TOOLS_STENCILOR_COMMANDS_RENDERMESSAGES_H
#define TOOLS_STENCILOR_COMMANDS_RENDERMESSAGES_H

#include <libStencilor/Template.h>
#include <libStencilorAnalysis/finding/Finding.h>
#include <tools/stencilor/commands/Render.h>
#include <tools/stencilor/commands/RenderedTemplates.h>

#include <vector>

namespace stencilor {

/// Converts the messages of a render to findings, one per location.
std::vector<kel::Stencilor::Analysis::Finding>
describeMessages(const RenderRequest& request, RenderedTemplates& templates,
                 const kel::Stencilor::ContextBase& context,
                 const kel::Stencilor::RenderResult& result);

} // namespace stencilor

#endif
