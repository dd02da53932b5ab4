#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATETREE_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATETREE_H

#include <libStencilorAnalysis/template/TemplateFile.h>

#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

/// The syntax tree of a well-formed template: one line per node, with its position, indented by
/// depth. An `else` has the depth of its `if`.
std::string formatTree(const TemplateFile& file);

/// The trees of templates as one JSON document; each node has a `depth`.
std::string formatTreeJson(const std::vector<const TemplateFile*>& files);

} // namespace kel::Stencilor::Analysis

#endif
