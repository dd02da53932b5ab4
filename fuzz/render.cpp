#include "../tests/support/ObviousUtf8.h"
#include "context_reader.h"
#include "target.h"

#include <libKel/FileSystem.h>
#include <libStencilor/Stencilor.h>

// The input is a context, as ContextReader takes it, and behind it a template. Whatever is rendered
// is valid UTF-8, and the same each time.

namespace {

/// Turns multiply with each loop that stands in another. The included files have one loop at most.
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
    kel::String errors;
    const kel::String output = kel::Stencilor::buildOutput(reader.rest(), context, errors);
    fuzz::require(output.view() == support::obviouslyRepairedUtf8(output.view()),
                  "what is rendered is valid UTF-8");

    kel::String errorsAgain;
    fuzz::require(kel::Stencilor::buildOutput(reader.rest(), context, errorsAgain) == output,
                  "a second rendering gives the same text");
    fuzz::require(errorsAgain == errors, "a second rendering gives the same messages");
    return 0;
}
