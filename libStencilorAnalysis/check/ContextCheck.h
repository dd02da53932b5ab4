#ifndef LIBSTENCILORANALYSIS_CHECK_CONTEXTCHECK_H
#define LIBSTENCILORANALYSIS_CHECK_CONTEXTCHECK_H

#include <libStencilorAnalysis/check/ContextWalk.h>
#include <libStencilorAnalysis/finding/Finding.h>

#include <vector>

namespace kel::Stencilor::Analysis {

/// What goes wrong where a well-formed template is rendered with a context: each place once, with
/// the first time that it happens, in the order in which it happens.
std::vector<Finding> findContextFaults(TemplateFiles& files, const TemplateFile& file,
                                       const ContextBase& context, ContextWalk::Extent extent);

} // namespace kel::Stencilor::Analysis

#endif
