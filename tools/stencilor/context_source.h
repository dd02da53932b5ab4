#ifndef TOOLS_STENCILOR_CONTEXT_SOURCE_H
#define TOOLS_STENCILOR_CONTEXT_SOURCE_H

#include <libStencilor/Value.h>

#include <optional>
#include <string>
#include <vector>

namespace stencilor {

/// Where the values of a context come from. No file is an empty object.
struct ContextOptions {
    std::optional<std::string> file;
    std::vector<std::string> definitions;

    bool isGiven() const { return file || !definitions.empty(); }
};

/// Makes the context.
/// Errors: throws `Failure`; for a JSON text with the line and column.
kel::Stencilor::Context makeContext(const ContextOptions& options);

} // namespace stencilor

#endif
