#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/system/System.h>

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

bool isColored(Color color, bool standardError) {
    const char* const without = std::getenv("NO_COLOR");
    const bool mayBe = color == Color::Always ||
                       (color == Color::Auto && (without == nullptr || *without == '\0'));
    return mayBe && (system::showsColors(standardError) || color == Color::Always);
}

} // namespace

void printError(std::string_view text) {
    system::writeStandardError("stencilor: " + showText(text) + "\n");
}

int reportFailure(const std::function<int()>& run) {
    try {
        return run();
    } catch (const std::bad_alloc&) {
        printError("out of memory");
    } catch (const std::length_error&) {
        printError("a string is longer than 4 GiB - 1 byte");
        return exitLimit;
    } catch (const std::exception& error) {
        printError(error.what());
    }
    return exitFailure;
}

std::string formatFindings(const std::vector<Finding>& findings, const Request& request,
                           bool standardError) {
    switch (request.format) {
    case Format::Text:
        return formatText(findings, isColored(request.color, standardError));
    case Format::Json:
        return formatJson(findings);
    case Format::Sarif:
        break;
    }
    return formatSarif(findings, system::uriOf);
}

ExitStatus printFindings(const std::vector<Finding>& findings, const Request& request) {
    if (!request.quiet && !findings.empty()) {
        system::writeStandardError(formatFindings(findings, request, true));
    }
    return needAttention(findings) ? exitMessages : exitClean;
}

} // namespace stencilor
