#ifndef LIBSTENCILORANALYSIS_EDITOR_TAGFIX_H
#define LIBSTENCILORANALYSIS_EDITOR_TAGFIX_H

#include <libStencilorAnalysis/template/TemplateFile.h>

#include <optional>
#include <string>

namespace kel::Stencilor::Analysis {

/// The replacement for a malformed tag, if it is unambiguous: trim signs, other braces and
/// quotation marks, misspelled keywords, a path with a leading `./`, and tags of other languages
/// with the same meaning. Nothing if it would not be a single tag.
std::optional<std::string> fixTag(const TemplateFile& file, const TagFault& fault);

} // namespace kel::Stencilor::Analysis

#endif
