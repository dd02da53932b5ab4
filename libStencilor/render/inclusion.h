#ifndef LIBSTENCILOR_RENDER_INCLUSION_H
#define LIBSTENCILOR_RENDER_INCLUSION_H

#include <libStencilor/render/render_result.h>
#include <libStencilor/render/scopes.h>

#include <string>

namespace kel::Stencilor::internal {

/// Renders the template in the file `path` with the scopes of the including one. The file is read
/// anew each time. A file that is missing or cannot be loaded adds one message to `result`; what
/// goes wrong inside the file adds none. A file that includes itself exhausts the stack.
void includeFile(const std::string& path, scope_stack& scopes, render_result& result);

} // namespace kel::Stencilor::internal

#endif
