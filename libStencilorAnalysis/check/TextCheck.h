#ifndef LIBSTENCILORANALYSIS_CHECK_TEXTCHECK_H
#define LIBSTENCILORANALYSIS_CHECK_TEXTCHECK_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Adds a warning for the first occurrence of each kind of damage in a template: a NUL byte, which
/// ends the template, a byte-order mark, or malformed UTF-8. For text that looks like UTF-16,
/// this is the only warning.
void checkText(const TemplateFile& file, std::vector<Finding>& findings);

/// True if there is any damage. This is faster than constructing a `TemplateFile`.
bool isDamaged(std::string_view text);

} // namespace kel::Stencilor::Analysis

#endif
