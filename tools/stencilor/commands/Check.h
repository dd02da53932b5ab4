#ifndef TOOLS_STENCILOR_COMMANDS_CHECK_H
#define TOOLS_STENCILOR_COMMANDS_CHECK_H

#include <tools/stencilor/commands/ContextSource.h>
#include <tools/stencilor/commands/Failure.h>

#include <optional>
#include <string>
#include <vector>

namespace stencilor {

enum class CheckFormat { Text, Json, Sarif };

/// What `stencilor check` is asked for. With neither a context nor definitions, names are not
/// looked up.
struct CheckRequest {
    std::vector<std::string> templateFiles;
    ContextRequest context;
    std::optional<std::string> root;
    CheckFormat format = CheckFormat::Text;
    std::string outputFile = "-";
};

/// Writes what is wrong with templates and what they include.
/// Errors: throws `Failure`; a template that cannot be read is reported, and the others are
/// checked.
ExitStatus check(const CheckRequest& request);

} // namespace stencilor

#endif
