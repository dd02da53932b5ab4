#include <libStencilorAnalysis/check/ContextCheck.h>
#include <libStencilorAnalysis/check/TemplateCheck.h>

#include <utility>

namespace kel::Stencilor::Analysis {

void checkTemplate(TemplateFiles& files, const TemplateFile& file, const ContextBase* context,
                   CheckReport& report, WalkLimits limits) {
    checkSyntax(files, file, report);
    if (context != nullptr && !file.fault().isPresent()) {
        const auto faults =
            findContextFaults(files, file, *context, ContextWalk::Extent::Whole, std::move(limits));
        report.findings.insert(report.findings.end(), faults.begin(), faults.end());
    }
}

} // namespace kel::Stencilor::Analysis
