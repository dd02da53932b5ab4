#include <libStencilorAnalysis/template/TemplateTree.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/NamedTemplates.h>
#include <tools/stencilor/commands/Tree.h>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

ExitStatus tree(const Request& request) {
    Files files;
    NamedTemplates templates(request, files);
    const std::vector<NamedTemplates::Named> all = templates.openAll();
    if (all.empty()) {
        return exitRejected;
    }
    std::vector<Finding> findings;
    std::vector<const TemplateFile*> trees;
    std::string text;
    for (const NamedTemplates::Named& named : all) {
        addNew(findings, templates.findContextFaults(named));
        trees.push_back(&named.file);
        text +=
            (all.size() > 1 ? showText(named.file.name()) + ":\n" : "") + formatTree(named.file);
    }
    const ExitStatus status = printFindings(findings, request);
    files.write(request.outputFile, request.format == Format::Json ? formatTreeJson(trees) : text);
    return status;
}

} // namespace stencilor
