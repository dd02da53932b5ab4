#ifndef TOOLS_STENCILOR_COMMANDS_CONTEXTSOURCE_H
#define TOOLS_STENCILOR_COMMANDS_CONTEXTSOURCE_H

#include <libStencilor/Value.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// Creates the context.
/// @param text if not null, receives the JSON text of the file
/// Errors: throws `Failure`, for a JSON text with the line and column.
kel::Stencilor::Context makeContext(const ContextRequest& request, Files& files,
                                    std::string* text = nullptr);

} // namespace stencilor

#endif
