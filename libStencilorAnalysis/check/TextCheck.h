#ifndef LIBSTENCILORANALYSIS_CHECK_TEXTCHECK_H
#define LIBSTENCILORANALYSIS_CHECK_TEXTCHECK_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Adds a warning for each kind of damage in the bytes of a template, where it occurs first: a NUL
/// byte, at which the template ends, a byte-order mark, malformed UTF-8. In place of all of them: a
/// text that looks like UTF-16.
void checkText(const TemplateFile& file, std::vector<Finding>& findings);

/// True if there is any damage. Takes less time than to make a `TemplateFile`.
bool isDamaged(std::string_view text);

} // namespace kel::Stencilor::Analysis

#endif
