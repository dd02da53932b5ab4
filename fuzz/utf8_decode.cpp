#include "../tests/support/oracles/ObviousUtf8.h"
#include "target.h"

#include <libKel/String.h>

// What is decoded is what the obvious implementation makes of it, and decoding that again changes
// nothing.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::textOf(data, size);
    kel::String string("what was there before");
    string.UTF8Decode(input.data(), static_cast<unsigned int>(input.size()), false);
    fuzz::require(string.view() == support::obviouslyRepairedUtf8(input),
                  "each maximal malformed part becomes one U+FFFD");

    kel::String again;
    again.UTF8Decode(string.view().data(), string.size(), false);
    fuzz::require(again == string, "what was decoded is valid");
    return 0;
}
