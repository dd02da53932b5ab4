#ifndef TOOLS_STENCILOR_COMMANDS_RENDER_H
#define TOOLS_STENCILOR_COMMANDS_RENDER_H

#include <libStencilor/Template.h>
#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

namespace stencilor {

/// The arguments of `stencilor render`.
struct RenderRequest : Request {
    kel::Stencilor::Escape escape = kel::Stencilor::Escape::none();
    kel::Stencilor::RenderLimits limits = {
        .steps = 100'000'000,
        .outputBytes = std::uint64_t{1} << 30,
        .templateBytes = std::uint64_t{256} << 20,
    };
    bool strict = false;
    bool trace = false;
    bool watch = false;
};

/// Renders a template, and writes the result and the messages. Does not return if it watches.
/// Errors: throws `Failure`, and `std::length_error` for text of more than 4 GiB - 1 byte.
ExitStatus render(const RenderRequest& request);

} // namespace stencilor

#endif
