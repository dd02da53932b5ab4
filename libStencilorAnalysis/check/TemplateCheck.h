#ifndef LIBSTENCILORANALYSIS_CHECK_TEMPLATECHECK_H
#define LIBSTENCILORANALYSIS_CHECK_TEMPLATECHECK_H

#include <libStencilor/Stencilor.h>
#include <libStencilorAnalysis/check/SyntaxCheck.h>

namespace kel::Stencilor::Analysis {

/// Adds all findings for a template and its includes.
/// @param context the values for the names; if null, names are not looked up
void checkTemplate(TemplateFiles& files, const TemplateFile& file, const ContextBase* context,
                   CheckReport& report);

} // namespace kel::Stencilor::Analysis

#endif
