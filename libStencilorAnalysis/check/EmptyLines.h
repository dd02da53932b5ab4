#ifndef LIBSTENCILORANALYSIS_CHECK_EMPTYLINES_H
#define LIBSTENCILORANALYSIS_CHECK_EMPTYLINES_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <vector>

namespace kel::Stencilor::Analysis {

/// Adds a note for each line that only contains block tags, because it leaves an empty line in the
/// output.
void findEmptyLines(const TemplateFile& file, std::vector<Finding>& findings);

} // namespace kel::Stencilor::Analysis

#endif
