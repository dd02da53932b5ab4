#ifndef LIBSTENCILORANALYSIS_CHECK_SYNTAXCHECK_H
#define LIBSTENCILORANALYSIS_CHECK_SYNTAXCHECK_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <unordered_set>
#include <vector>

namespace kel::Stencilor::Analysis {

/// What checks of several templates have found, in no order, and the files that they looked at.
struct CheckReport {
    std::vector<const TemplateFile*> files;
    std::vector<Finding> findings;
    std::unordered_set<const TemplateFile*> checked; // the same files
};

/// Adds what is wrong with a template and everything that it includes, apart from the context.
void checkSyntax(TemplateFiles& files, const TemplateFile& file, CheckReport& report);

/// The findings, sorted by files in the order of the report and by places. Each once, though a file
/// may have been read for several roots.
std::vector<Finding> sortFindings(CheckReport report);

} // namespace kel::Stencilor::Analysis

#endif
