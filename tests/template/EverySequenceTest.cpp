#include "../support/Build.h"
#include "../support/Environment.h"
#include "../support/oracles/ReadingComparison.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace support {
namespace {

std::string sequenceOf(std::uint64_t length, std::uint64_t number) {
    std::string sequence;
    for (std::uint64_t at = 0; at < length; ++at) {
        sequence += tokens[number % tokens.size()];
        number /= tokens.size();
    }
    return sequence;
}

/// Tries all sequences of one length, until one is read differently.
void tryLength(std::uint64_t length) {
    std::uint64_t total = 1;
    for (std::uint64_t factor = 0; factor < length; ++factor) {
        total *= tokens.size();
    }
    for (std::uint64_t number = 0; number < total; ++number) {
        const std::string sequence = sequenceOf(length, number);
        if (!readsTheSame(sequence)) {
            expectTheSameReading(sequence);
            return;
        }
    }
}

// Each token more takes 22 times as long. Blocks have seven: those take a quarter of an hour.
TEST(EverySequence, OfAFewTokensIsReadTheSame) {
    const std::uint64_t greatestLength = numberFromEnvironment("STENCILOR_TOKENS", slow ? 4 : 5);
    ASSERT_LE(greatestLength, 8u) << "the numbers of the sequences would not fit";
    for (std::uint64_t length = 0; length <= greatestLength && !HasFailure(); ++length) {
        tryLength(length);
    }
}

} // namespace
} // namespace support
