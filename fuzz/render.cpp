#include "../tests/support/Context.h"
#include "../tests/support/PrescribedMessages.h"
#include "../tests/support/oracles/ObviousUtf8.h"
#include "../tests/support/oracles/SecondRenderer.h"
#include "context_reader.h"
#include "target.h"

#include <libKel/FileSystem.h>
#include <libStencilor/Stencilor.h>
#include <libStencilor/Template.h>

#include <string>
#include <string_view>
#include <utility>

// The input is a context for ContextReader, followed by a template. The output is always valid
// UTF-8, the same each time, and equal to that of the second renderer and of a `Template`, as a
// whole and in pieces.

namespace {

/// Nested loops multiply the iterations. Included files have at most one loop.
bool takesManyTurns(std::string_view text, std::size_t longestList) {
    std::size_t turns = 1;
    for (const std::string_view keyword : {"for", "include"}) {
        for (std::size_t at = text.find(keyword); at != text.npos;
             at = text.find(keyword, at + 1)) {
            turns *= longestList;
            if (turns > 1000) {
                return true;
            }
        }
    }
    return false;
}

support::Rendered renderOnceMore(const kel::String& text,
                                 const kel::Stencilor::ContextBase& context) {
    kel::String errors;
    std::string output = support::buildOutputOnceMore(text, context, errors).str();
    return {std::move(output), errors.str()};
}

support::Rendered renderParsed(const kel::Stencilor::Template& made,
                               const kel::Stencilor::ContextBase& context) {
    const kel::Stencilor::RenderResult result = made.render(context);
    return {result.text.str(), support::prescribedText(result)};
}

support::Rendered renderPieces(const kel::Stencilor::Template& made,
                               const kel::Stencilor::ContextBase& context) {
    std::string output;
    const auto write = [&output](std::string_view piece) { output += piece; };
    const kel::Stencilor::RenderResult result = made.renderTo(context, write);
    return {std::move(output), support::prescribedText(result)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool rooted = kel::FileSystem::setRoot(STENCILOR_FUZZ_INCLUDES);
    fuzz::require(rooted, "the folder of the included files is there");

    fuzz::ContextReader reader(fuzz::textOf(data, size));
    kel::Stencilor::ContextDictionary context;
    reader.readChildren(context);
    if (takesManyTurns(reader.rest(), reader.longestList())) {
        return 0;
    }
    const support::Rendered rendered = support::render(reader.rest(), context);
    fuzz::require(rendered.output == support::obviouslyRepairedUtf8(rendered.output),
                  "what is rendered is valid UTF-8");
    fuzz::require(rendered == support::render(reader.rest(), context),
                  "rendering again gives the same");
    fuzz::require(rendered == renderOnceMore(reader.rest(), context),
                  "the second renderer gives the same");
    const kel::Stencilor::Template made(reader.rest());
    fuzz::require(rendered == renderParsed(made, context), "a parsed template gives the same");
    fuzz::require(rendered == renderPieces(made, context), "its pieces are the same");
    return 0;
}
