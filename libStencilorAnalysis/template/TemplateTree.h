#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATETREE_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATETREE_H

#include <libStencilorAnalysis/template/TemplateFile.h>

#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

/// The syntax tree of a template that is well formed: a line for each node, with the position where
/// it begins, indented by its depth. An `else` is as deep as its `if`.
std::string formatTree(const TemplateFile& file);

/// The trees of templates as one JSON document; a node has its `depth`.
std::string formatTreeJson(const std::vector<const TemplateFile*>& files);

} // namespace kel::Stencilor::Analysis

#endif
