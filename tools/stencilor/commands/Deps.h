#ifndef TOOLS_STENCILOR_COMMANDS_DEPS_H
#define TOOLS_STENCILOR_COMMANDS_DEPS_H

#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Request.h>

#include <optional>
#include <string>
#include <string_view>

namespace stencilor {

/// The arguments of `stencilor deps`. With a target, the output is a Make rule.
struct DepsRequest : Request {
    std::optional<std::string> target;
};

/// Writes the files that templates include, directly or through others.
/// Errors: throws `Failure`.
ExitStatus deps(const DepsRequest& request);

/// Escapes a path for a rule of Make or Ninja.
/// Errors: throws `Failure` for a line break, which cannot be escaped.
std::string escapeForMake(std::string_view path);

} // namespace stencilor

#endif
