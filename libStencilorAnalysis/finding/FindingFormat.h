#ifndef LIBSTENCILORANALYSIS_FINDING_FINDINGFORMAT_H
#define LIBSTENCILORANALYSIS_FINDING_FINDINGFORMAT_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <functional>
#include <string>
#include <vector>

// The formats of findings, each in its own file.

namespace kel::Stencilor::Analysis {

/// Formats findings like a compiler: `PATH:LINE:COLUMN: SEVERITY: MESSAGE`, the line, and a caret
/// below it, optionally with terminal colors.
std::string formatText(const std::vector<Finding>& findings, bool colored = false);

/// One JSON document.
std::string formatJson(const std::vector<Finding>& findings);

/// One document of SARIF 2.1.0. `uriOf` converts the name of a template to a URI.
std::string formatSarif(const std::vector<Finding>& findings,
                        const std::function<std::string(const std::string&)>& uriOf);

} // namespace kel::Stencilor::Analysis

#endif
