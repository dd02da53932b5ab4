#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/system/System.h>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

void printError(std::string_view text) {
    system::writeStandardError("stencilor: " + showText(text) + "\n");
}

ExitStatus printFindings(const std::vector<Finding>& findings) {
    system::writeStandardError(formatText(findings));
    return findings.empty() ? exitClean : exitMessages;
}

} // namespace stencilor
