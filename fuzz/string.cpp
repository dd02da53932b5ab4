#include "target.h"

#include <libKel/String.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

// The input is a sequence of operations on a few strings, and on standard strings as well. After
// each step, all of them are equal, and in the same order.

namespace {

struct Pair {
    kel::String ours;
    std::string standard;
};

using Pairs = std::array<Pair, 3>;

/// A conversion that outlives changes of its string.
struct Held {
    std::unique_ptr<kel::CString> ours;
    std::string standard;
};

// Strings double when they are appended to themselves. From 4,096 bytes on, they are shared.
constexpr std::size_t longest = 20000;

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

/// One step; `count` may be used as a length or a position.
void step(std::uint8_t what, Pair& pair, Pair& other, Held& held, std::size_t count,
          std::string_view rest) {
    switch (what % 8) {
    case 0:
        pair.standard = rest.substr(0, count);
        if (count % 2 == 1 && isAscii(pair.standard)) {
            pair.ours.UTF8Decode(pair.standard.data(),
                                 static_cast<unsigned int>(pair.standard.size()), false);
        } else {
            pair.ours = kel::String(pair.standard);
        }
        break;
    case 1:
        pair.ours = other.ours;
        pair.standard = other.standard;
        break;
    case 2:
        if (&pair != &other) {
            pair.ours = std::move(other.ours);
            pair.standard = std::exchange(other.standard, std::string());
        }
        break;
    case 3:
        if (pair.standard.size() + other.standard.size() <= longest) {
            pair.ours += other.ours;
            pair.standard += other.standard;
        }
        break;
    case 4:
        pair.ours = other.ours.subString(static_cast<unsigned int>(count), 9);
        pair.standard = other.standard.substr(std::min(count, other.standard.size()), 9);
        break;
    case 5:
        pair.ours = kel::String(other.ours.getUTF8String().c_str());
        pair.standard = std::string(other.standard.c_str());
        break;
    case 6:
        held.ours.reset(new kel::CString(other.ours.getUTF8String()));
        held.standard = other.standard;
        break;
    default:
        std::swap(pair.ours, other.ours);
        std::swap(pair.standard, other.standard);
        break;
    }
}

void compare(const Pair& a, const Pair& b) {
    fuzz::require(a.ours.view() == a.standard, "the characters are the same");
    fuzz::require(a.ours.view().data()[a.standard.size()] == '\0', "a NUL follows them");
    fuzz::require((a.ours < b.ours) == (a.standard < b.standard), "the order is the same");
    fuzz::require((a.ours == b.ours) == (a.standard == b.standard), "equality is the same");
}

void compare(const Held& held) {
    const std::string_view bytes(held.ours->c_str(), held.ours->size());
    fuzz::require(bytes == held.standard, "a conversion stays as it was");
    fuzz::require(bytes.data()[bytes.size()] == '\0', "a NUL follows it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Pairs pairs;
    Held held;
    std::string_view rest = fuzz::textOf(data, size);
    for (; size >= 2; data += 2, size -= 2) {
        rest.remove_prefix(2);
        Pair& pair = pairs[data[0] / 8u % pairs.size()];
        Pair& other = pairs[data[0] / 24u % pairs.size()];
        step(data[0], pair, other, held, data[1], rest);
        for (const Pair& a : pairs) {
            for (const Pair& b : pairs) {
                compare(a, b);
            }
        }
        if (held.ours != nullptr) {
            compare(held);
        }
    }
    return 0;
}
