#ifndef LIBSTENCILORANALYSIS_CHECK_CONTEXTCHECK_H
#define LIBSTENCILORANALYSIS_CHECK_CONTEXTCHECK_H

#include <libStencilorAnalysis/check/ContextWalk.h>
#include <libStencilorAnalysis/finding/Finding.h>

#include <vector>

namespace kel::Stencilor::Analysis {

/// Finds the problems of a well-formed template with a context. Each place is reported once, for
/// its first problem, in the order of rendering.
std::vector<Finding> findContextFaults(TemplateFiles& files, const TemplateFile& file,
                                       const ContextBase& context, ContextWalk::Extent extent,
                                       WalkLimits limits = {});

} // namespace kel::Stencilor::Analysis

#endif
