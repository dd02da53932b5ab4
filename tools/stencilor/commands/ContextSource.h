#ifndef TOOLS_STENCILOR_COMMANDS_CONTEXTSOURCE_H
#define TOOLS_STENCILOR_COMMANDS_CONTEXTSOURCE_H

#include <libStencilor/Value.h>

#include <optional>
#include <string>
#include <vector>

namespace stencilor {

/// Where the values of a context come from, and how it is made. No file is an empty object.
struct ContextRequest {
    std::optional<std::string> file;
    std::vector<std::string> definitions;
    bool positions = false; // of the elements of lists

    bool isGiven() const { return file || !definitions.empty(); }
};

/// Makes the context.
/// Errors: throws `Failure`; for a JSON text with the line and column.
kel::Stencilor::Context makeContext(const ContextRequest& request);

} // namespace stencilor

#endif
