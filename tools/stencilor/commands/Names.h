#ifndef TOOLS_STENCILOR_COMMANDS_NAMES_H
#define TOOLS_STENCILOR_COMMANDS_NAMES_H

#include <tools/stencilor/commands/Failure.h>

#include <optional>
#include <string>

namespace stencilor {

enum class NamesFormat { Text, Json, Skeleton };

/// What `stencilor names` is asked for.
struct NamesRequest {
    std::string templateFile;
    std::optional<std::string> root;
    NamesFormat format = NamesFormat::Text;
    std::string outputFile = "-";
};

/// Writes which names a template and what it includes ask a context for; or, as a skeleton, a
/// context that has them.
/// Errors: throws `Failure`.
ExitStatus names(const NamesRequest& request);

} // namespace stencilor

#endif
