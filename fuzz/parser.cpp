#include "../tests/support/oracles/SecondReading.h"
#include "../tests/support/oracles/SyntaxReport.h"
#include "../tests/support/oracles/SyntaxTree.h"
#include "target.h"

#include <libStencilor/template/parse_template.h>

#include <string>

// The parser and the second reading accept the same templates and make the same trees, even of
// rejected templates up to the fault. The parts and faults reported to hosts agree with them.

using namespace kel::Stencilor::internal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::textOf(data, size);
    syntax_tree parsed;
    const bool accepted = parseTemplate(input, parsed.nodes);

    // A template ends at its first NUL, but the second reading does not handle NULs.
    const std::string text(input.substr(0, input.find('\0')));
    syntax_tree read;
    fuzz::require(accepted == support::readOnceMore(text, read.nodes),
                  "both readings accept the same templates");
    fuzz::require(support::describe(parsed.nodes) == support::describe(read.nodes),
                  "both readings give the same tree");
    fuzz::require(support::findMistakeInReport(std::string(input)).empty(),
                  "what is reported is right");
    return 0;
}
