#ifndef TOOLS_STENCILOR_COMMANDS_DEPS_H
#define TOOLS_STENCILOR_COMMANDS_DEPS_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

#include <optional>
#include <string>
#include <string_view>

namespace stencilor {

/// What `stencilor deps` is asked for. With a target, the output is a rule of Make.
struct DepsRequest : Request {
    std::optional<std::string> target;
};

/// Writes which files templates include, directly or through others.
/// Errors: throws `Failure`.
ExitStatus deps(const DepsRequest& request);

/// A path as Make and Ninja read it in a rule.
/// Errors: throws `Failure` for one with a line break, which cannot be written there.
std::string escapeForMake(std::string_view path);

} // namespace stencilor

#endif
