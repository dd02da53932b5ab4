#ifndef LIBSTENCILORANALYSIS_CHECK_SYNTAXCHECK_H
#define LIBSTENCILORANALYSIS_CHECK_SYNTAXCHECK_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <unordered_set>
#include <vector>

namespace kel::Stencilor::Analysis {

/// The unsorted findings for several templates, and the files that were checked.
struct CheckReport {
    std::vector<const TemplateFile*> files;
    std::vector<Finding> findings;
    std::unordered_set<const TemplateFile*> checked; // the same files, for lookup
};

/// Checks a template and its includes without a context, and adds the findings.
void checkSyntax(TemplateFiles& files, const TemplateFile& file, CheckReport& report);

/// Sorts the findings by file, in the order of the report, and by place, and removes duplicates,
/// since a file may have been read for several roots.
std::vector<Finding> sortFindings(CheckReport report);

} // namespace kel::Stencilor::Analysis

#endif
