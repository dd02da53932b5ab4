#ifndef LIBSTENCILORANALYSIS_CHECK_EMPTYLINES_H
#define LIBSTENCILORANALYSIS_CHECK_EMPTYLINES_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <vector>

namespace kel::Stencilor::Analysis {

/// Adds a note for each line that has tags of blocks and nothing else: the tags are not written,
/// but the end of their line is.
void findEmptyLines(const TemplateFile& file, std::vector<Finding>& findings);

} // namespace kel::Stencilor::Analysis

#endif
