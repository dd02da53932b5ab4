#ifndef TOOLS_STENCILOR_CONTEXT_SOURCE_H
#define TOOLS_STENCILOR_CONTEXT_SOURCE_H

#include <libStencilor/Stencilor.h>

#include <memory>
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
std::unique_ptr<kel::Stencilor::ContextBase> makeContext(const ContextOptions& options);

} // namespace stencilor

#endif
