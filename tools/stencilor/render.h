#ifndef TOOLS_STENCILOR_RENDER_H
#define TOOLS_STENCILOR_RENDER_H

#include <tools/stencilor/failure.h>

#include <optional>
#include <string>
#include <vector>

namespace stencilor {

/// What `stencilor render` was asked for. In place of a file, `-` is a standard stream. No context
/// is an empty one, and no root the template's folder.
struct RenderOptions {
    std::string templateFile;
    std::optional<std::string> contextFile;
    std::vector<std::string> definitions;
    std::string outputFile = "-";
    std::optional<std::string> root;
    bool strict = false;
    bool trace = false;
};

/// Renders a template, and writes the result and the engine's messages.
/// Errors: throws `Failure`; a text over 4 GiB - 1 byte throws `std::length_error`.
ExitStatus render(const RenderOptions& options);

} // namespace stencilor

#endif
