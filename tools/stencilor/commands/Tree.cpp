#include <libStencilorAnalysis/finding/Finding.h>
#include <libStencilorAnalysis/template/TemplateTree.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/Tree.h>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

ExitStatus tree(const TreeRequest& request) {
    const TemplateFile file(inputName(request.templateFile), readInput(request.templateFile));
    if (file.fault().isPresent()) {
        printFindings({describeFault(file)});
        return exitRejected;
    }
    writeOutput(request.outputFile, formatTree(file));
    return exitClean;
}

} // namespace stencilor
