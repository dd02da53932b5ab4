#include "../support/Build.h"
#include "../support/Environment.h"
#include "../support/oracles/ReadingComparison.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <iostream>
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

/// The time that may be spent.
class Budget {
  public:
    bool isSpent() const { return seconds_ != 0 && std::chrono::steady_clock::now() >= end_; }

  private:
    std::uint64_t seconds_ = numberFromEnvironment("STENCILOR_SECONDS", slow ? 15 : 60);
    std::chrono::steady_clock::time_point end_ =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds_);
};

/// Tries all sequences of one length, and returns how many there was time for.
std::uint64_t tryLength(std::uint64_t length, const Budget& budget, std::uint64_t& total) {
    // It has no factor in common with the number of sequences, so that each has its turn, and those
    // there is time for are spread over all.
    constexpr std::uint64_t stride = 70072637;
    static_assert(stride % 2 != 0 && stride % 11 != 0 && tokens.size() == 2 * 11);

    total = 1;
    for (std::uint64_t factor = 0; factor < length; ++factor) {
        total *= tokens.size();
    }
    for (std::uint64_t turn = 0; turn < total; ++turn) {
        if (turn % 1024 == 0 && budget.isSpent()) {
            return turn;
        }
        const std::string sequence = sequenceOf(length, turn * stride % total);
        if (!readsTheSame(sequence)) {
            expectTheSameReading(sequence);
            return turn;
        }
    }
    return total;
}

// Blocks have seven tokens at least. All sequences of that length take a quarter of an hour:
// STENCILOR_SECONDS=0 lifts the limit of time, STENCILOR_TOKENS=7 the one of length.
TEST(EverySequence, OfAFewTokensIsReadTheSame) {
    const std::uint64_t greatestLength = numberFromEnvironment("STENCILOR_TOKENS", 6);
    ASSERT_LE(greatestLength, 8u) << "the numbers of the sequences would not fit";
    const Budget budget;
    for (std::uint64_t length = 0; length <= greatestLength && !HasFailure(); ++length) {
        std::uint64_t total = 0;
        const std::uint64_t compared = tryLength(length, budget, total);
        std::cout << "compared " << compared << " of " << total << " sequences of " << length
                  << " tokens\n";
        RecordProperty("compared_of_length_" + std::to_string(length), std::to_string(compared));
    }
}

} // namespace
} // namespace support
