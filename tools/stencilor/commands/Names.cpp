#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/names/Skeleton.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/NamedTemplates.h>
#include <tools/stencilor/commands/Names.h>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

using AllTemplates = std::vector<NamedTemplates::Named>;

ExitStatus surveyAll(const NamesRequest& request, const NamedTemplates& templates,
                     const AllTemplates& all, Surveyor& surveyor) {
    std::vector<Finding> findings;
    for (const NamedTemplates::Named& named : all) {
        addNew(findings, survey(named.files, named.file, surveyor));
        addNew(findings, templates.findContextFaults(named));
    }
    return printFindings(findings, request);
}

} // namespace

ExitStatus names(const NamesRequest& request) {
    Files files;
    NamedTemplates templates(request, files);
    const AllTemplates all = templates.openAll();
    if (all.empty()) {
        return exitRejected;
    }
    if (!request.skeleton) {
        NameList list;
        const ExitStatus status = surveyAll(request, templates, all, list);
        files.write(request.outputFile,
                    request.format == Format::Json ? list.formatJson() : list.formatText());
        return status;
    }
    Skeleton skeleton;
    const ExitStatus status = surveyAll(request, templates, all, skeleton);
    const std::string prefix = all.size() == 1 ? all.front().file.name() + ": " : "";
    for (const std::string& conflict : skeleton.conflicts()) {
        if (!request.quiet) {
            printError(prefix + conflict);
        }
    }
    files.write(request.outputFile, skeleton.formatJson());
    return skeleton.conflicts().empty() ? status : exitMessages;
}

} // namespace stencilor
