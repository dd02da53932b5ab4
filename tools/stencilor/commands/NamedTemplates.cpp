#include <libStencilorAnalysis/check/ContextCheck.h>
#include <tools/stencilor/commands/ContextSource.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/NamedTemplates.h>

#include <set>
#include <tuple>
#include <utility>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

NamedTemplates::NamedTemplates(const Request& request, Files& files, std::string* contextText)
    : request_(request), files_(files),
      context_(request.context.isGiven()
                   ? std::optional(makeContext(request.context, files, contextText))
                   : std::nullopt) {}

NamedTemplates::Named NamedTemplates::open(const std::string& file,
                                           const std::optional<std::string>& root) {
    TemplateText text = readTemplate(file, request_, files_);
    const std::string folder = root ? *root : includeRoot(file, request_);
    TemplateFiles& files = roots_.try_emplace(folder, folder, files_).first->second.files;
    return {files, files.add(std::move(text))};
}

std::vector<NamedTemplates::Named> NamedTemplates::openAll() {
    std::vector<Named> all;
    std::vector<Finding> faults;
    for (const std::string& file : request_.templateFiles) {
        all.push_back(open(file));
        std::vector<Finding> found;
        describeFaults(all.back().file, found);
        addNew(faults, std::move(found));
    }
    printFindings(faults, request_);
    return faults.empty() ? all : std::vector<Named>();
}

std::vector<Finding> NamedTemplates::findContextFaults(const Named& named) const {
    return context_ ? kel::Stencilor::Analysis::findContextFaults(
                          named.files, named.file, *context_, ContextWalk::Extent::Whole)
                    : std::vector<Finding>();
}

void addNew(std::vector<Finding>& findings, std::vector<Finding> more) {
    if (more.empty()) {
        return;
    }
    const auto keyOf = [](const Finding& finding) {
        return std::tuple(finding.place.file, finding.place.range.begin, finding.rule);
    };
    std::set<std::tuple<const TemplateFile*, unsigned int, Rule>> known;
    for (const Finding& finding : findings) {
        known.insert(keyOf(finding));
    }
    for (Finding& finding : more) {
        if (known.insert(keyOf(finding)).second) {
            findings.push_back(std::move(finding));
        }
    }
}

} // namespace stencilor
