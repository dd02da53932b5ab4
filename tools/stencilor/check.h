#ifndef TOOLS_STENCILOR_CHECK_H
#define TOOLS_STENCILOR_CHECK_H

#include <tools/stencilor/context_source.h>
#include <tools/stencilor/failure.h>
#include <tools/stencilor/finding.h>

#include <optional>
#include <string>
#include <vector>

namespace stencilor {

/// What `stencilor check` was asked for. With neither a context nor definitions, names are not
/// looked up.
struct CheckOptions {
    std::vector<std::string> templateFiles;
    ContextOptions context;
    std::optional<std::string> root;
    FindingFormat format = FindingFormat::Text;
    std::string outputFile = "-";
};

/// Writes what is wrong with templates and what they include.
/// Errors: throws `Failure`; a template that cannot be read is told, and the others are checked.
ExitStatus check(const CheckOptions& options);

} // namespace stencilor

#endif
