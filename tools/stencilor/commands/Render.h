#ifndef TOOLS_STENCILOR_COMMANDS_RENDER_H
#define TOOLS_STENCILOR_COMMANDS_RENDER_H

#include <tools/stencilor/commands/ContextSource.h>
#include <tools/stencilor/commands/Failure.h>

#include <optional>
#include <string>

namespace stencilor {

/// What `stencilor render` is asked for. In place of a file, `-` is a standard stream. No root is
/// the template's folder.
struct RenderRequest {
    std::string templateFile;
    ContextRequest context;
    std::string outputFile = "-";
    std::optional<std::string> root;
    bool strict = false;
    bool explain = false;
    bool trace = false;
};

/// Renders a template, and writes the result and the engine's messages.
/// Errors: throws `Failure`; a text over 4 GiB - 1 byte throws `std::length_error`.
ExitStatus render(const RenderRequest& request);

} // namespace stencilor

#endif
