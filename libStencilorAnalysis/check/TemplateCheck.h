#ifndef LIBSTENCILORANALYSIS_CHECK_TEMPLATECHECK_H
#define LIBSTENCILORANALYSIS_CHECK_TEMPLATECHECK_H

#include <libStencilorAnalysis/check/ContextWalk.h>
#include <libStencilorAnalysis/check/SyntaxCheck.h>

namespace kel::Stencilor::Analysis {

/// Adds all findings for a template and its includes.
/// @param context the values for the names; if null, names are not looked up
/// @param limits of looking up names
void checkTemplate(TemplateFiles& files, const TemplateFile& file, const ContextBase* context,
                   CheckReport& report, WalkLimits limits = {});

} // namespace kel::Stencilor::Analysis

#endif
