#ifndef LIBSTENCILORANALYSIS_EDITOR_TAGFIX_H
#define LIBSTENCILORANALYSIS_EDITOR_TAGFIX_H

#include <libStencilorAnalysis/template/TemplateFile.h>

#include <optional>
#include <string>

namespace kel::Stencilor::Analysis {

/// What to write in place of a tag at fault, where there is no doubt: signs that trim, other braces
/// and quotation marks, misspelt keywords, a path with `./` in front, the tags of other languages
/// that mean the same. Nothing where what was meant is not one tag.
std::optional<std::string> fixTag(const TemplateFile& file, const TagFault& fault);

} // namespace kel::Stencilor::Analysis

#endif
