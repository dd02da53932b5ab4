#ifndef TOOLS_STENCILOR_RENDER_H
#define TOOLS_STENCILOR_RENDER_H

#include <tools/stencilor/context_source.h>
#include <tools/stencilor/failure.h>

#include <optional>
#include <string>

namespace stencilor {

/// What `stencilor render` was asked for. In place of a file, `-` is a standard stream. No root is
/// the template's folder.
struct RenderOptions {
    std::string templateFile;
    ContextOptions context;
    std::string outputFile = "-";
    std::optional<std::string> root;
    bool strict = false;
    bool explain = false;
    bool trace = false;
};

/// Renders a template, and writes the result and the engine's messages.
/// Errors: throws `Failure`; a text over 4 GiB - 1 byte throws `std::length_error`.
ExitStatus render(const RenderOptions& options);

} // namespace stencilor

#endif
