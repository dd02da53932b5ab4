#ifndef LIBSTENCILORANALYSIS_FINDING_HABIT_H
#define LIBSTENCILORANALYSIS_FINDING_HABIT_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <string>
#include <vector>

// What people write who know another template engine, and what to write instead.

namespace kel::Stencilor::Analysis {

/// Says what is wrong with a tag: `expected …`, or what a name or path may not hold.
std::string explainFault(const TemplateFile& file, const TagFault& fault);

/// What to write instead of a tag at fault: a note for each habit that it shows.
std::vector<std::string> findHabits(const TemplateFile& file, const TagFault& fault);

/// Adds notes about what is well formed, but not read as somebody may expect who knows another
/// engine: comments, keywords that run together with a name, the position in a loop.
void findWellFormedHabits(const TemplateFile& file, std::vector<Finding>& findings);

} // namespace kel::Stencilor::Analysis

#endif
