#ifndef TOOLS_STENCILOR_FINDING_FORMAT_H
#define TOOLS_STENCILOR_FINDING_FORMAT_H

#include <tools/stencilor/finding.h>

#include <string>
#include <string_view>
#include <vector>

// The formats of findings, one file each.

namespace stencilor {

std::string formatText(const std::vector<Finding>& findings);
std::string formatJson(const std::vector<Finding>& findings);
std::string formatSarif(const std::vector<Finding>& findings);

/// A path as a URI, relative where the path is.
std::string uriOf(std::string_view path);

} // namespace stencilor

#endif
