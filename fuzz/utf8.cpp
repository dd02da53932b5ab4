#include "../tests/support/oracles/ObviousUtf8.h"
#include "target.h"

#include <libKel/String.h>

#include <cstring>
#include <string>

// Decoding agrees with the obvious implementation. Conversions to and from UTF-16 restore
// everything but malformed parts. The input is decoded as each of them.

namespace {

/// `text` with each unpaired surrogate replaced by U+FFFD.
std::u16string obviouslyRepairedUtf16(std::u16string text) {
    const auto isIn = [](char16_t unit, char16_t first) {
        return unit >= first && unit - first < 0x400;
    };
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool pair =
            isIn(text[at], 0xD800) && at + 1 < text.size() && isIn(text[at + 1], 0xDC00);
        if (pair) {
            ++at;
        } else if (isIn(text[at], 0xD800) || isIn(text[at], 0xDC00)) {
            text[at] = 0xFFFD;
        }
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::textOf(data, size);
    kel::String decoded("what was there before");
    decoded.UTF8Decode(input.data(), static_cast<unsigned int>(input.size()), false);
    fuzz::require(decoded.view() == support::obviouslyRepairedUtf8(input),
                  "each maximal malformed part becomes one U+FFFD");
    fuzz::require(kel::String::fromUTF16(kel::String(input).toUTF16()) == decoded,
                  "text comes back from UTF-16");

    std::u16string units(size / sizeof(char16_t), u'\0');
    if (!units.empty()) { // otherwise the pointer may be null
        std::memcpy(units.data(), data, units.size() * sizeof(char16_t));
    }
    fuzz::require(kel::String::fromUTF16(units).toUTF16() == obviouslyRepairedUtf16(units),
                  "UTF-16 comes back from text");
    return 0;
}
