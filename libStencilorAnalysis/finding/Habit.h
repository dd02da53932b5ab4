#ifndef LIBSTENCILORANALYSIS_FINDING_HABIT_H
#define LIBSTENCILORANALYSIS_FINDING_HABIT_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <string>
#include <vector>

// Constructs of other template engines, and what to write instead.

namespace kel::Stencilor::Analysis {

/// Describes the fault of a tag: `expected …`, or a character that a name or path cannot contain.
std::string explainFault(const TemplateFile& file, const TagFault& fault);

/// Explains what to write instead of a malformed tag, with a note for each habit that it shows.
std::vector<std::string> findHabits(const TemplateFile& file, const TagFault& fault);

/// Adds notes about well-formed text with another meaning in other engines: comments, keywords that
/// run together with a name, the position in a loop.
void findWellFormedHabits(const TemplateFile& file, std::vector<Finding>& findings);

} // namespace kel::Stencilor::Analysis

#endif
