#ifndef LIBSTENCILORANALYSIS_CHECK_CONTEXTCHECK_H
#define LIBSTENCILORANALYSIS_CHECK_CONTEXTCHECK_H

#include <libStencilorAnalysis/check/ContextWalk.h>
#include <libStencilorAnalysis/finding/Finding.h>

#include <functional>
#include <vector>

namespace kel::Stencilor::Analysis {

/// What goes wrong where a well-formed template is rendered with a context: each place once, with
/// the first time that it happens, in the order in which it happens.
/// @param goOn if not empty, ends the walk by returning false; it is asked every 1,024 tags
std::vector<Finding> findContextFaults(TemplateFiles& files, const TemplateFile& file,
                                       const ContextBase& context, ContextWalk::Extent extent,
                                       std::function<bool()> goOn = {});

} // namespace kel::Stencilor::Analysis

#endif
