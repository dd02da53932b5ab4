#ifndef TOOLS_STENCILOR_CONTEXT_FINDINGS_H
#define TOOLS_STENCILOR_CONTEXT_FINDINGS_H

#include <tools/stencilor/context_walk.h>
#include <tools/stencilor/finding.h>

#include <vector>

namespace stencilor {

/// What goes wrong where a well-formed template is rendered with a context: each place once, with
/// the first time that it happens, in the order in which it happens.
std::vector<Finding> findContextFaults(TemplateFiles& files, const TemplateFile& file,
                                       const kel::Stencilor::ContextBase& context,
                                       ContextWalk::Extent extent);

/// What is wrong with an inclusion.
Finding describeInclusion(Rule rule, const TemplateFile& file, const SyntaxElement& part);

} // namespace stencilor

#endif
