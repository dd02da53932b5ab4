#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/names/Skeleton.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/Names.h>
#include <tools/stencilor/commands/TemplateFolder.h>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

ExitStatus writeNames(const NamesRequest& request, const NamedTemplates::Named& named) {
    NameList list;
    const ExitStatus status = printFindings(survey(named.files, named.file, list));
    writeOutput(request.outputFile,
                request.format == NamesFormat::Json ? list.formatJson() : list.formatText());
    return status;
}

ExitStatus writeSkeleton(const NamesRequest& request, const NamedTemplates::Named& named) {
    Skeleton skeleton;
    const ExitStatus status = printFindings(survey(named.files, named.file, skeleton));
    for (const std::string& conflict : skeleton.conflicts()) {
        printError(named.file.name() + ": " + conflict);
    }
    writeOutput(request.outputFile, skeleton.formatJson());
    return skeleton.conflicts().empty() ? status : exitMessages;
}

} // namespace

ExitStatus names(const NamesRequest& request) {
    NamedTemplates templates;
    const NamedTemplates::Named named = templates.open(request.templateFile, request.root);
    if (named.file.fault().isPresent()) {
        printFindings({describeFault(named.file)});
        return exitRejected;
    }
    return request.format == NamesFormat::Skeleton ? writeSkeleton(request, named)
                                                   : writeNames(request, named);
}

} // namespace stencilor
