#ifndef LIBSTENCILORANALYSIS_CHECK_TEMPLATECHECK_H
#define LIBSTENCILORANALYSIS_CHECK_TEMPLATECHECK_H

#include <libStencilor/Stencilor.h>
#include <libStencilorAnalysis/check/SyntaxCheck.h>

namespace kel::Stencilor::Analysis {

/// Adds all that is wrong with a template and what it includes.
/// @param context the values that names are looked up in; null for none, so that they are not
void checkTemplate(TemplateFiles& files, const TemplateFile& file, const ContextBase* context,
                   CheckReport& report);

} // namespace kel::Stencilor::Analysis

#endif
