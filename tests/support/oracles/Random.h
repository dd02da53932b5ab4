#ifndef TESTS_SUPPORT_ORACLES_RANDOM_H
#define TESTS_SUPPORT_ORACLES_RANDOM_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

namespace support {

/// Pseudo-random numbers, the same for the same seed with every compiler.
class Random {
  public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(engine_() % limit); }

    /// True once in `calls` calls, on average.
    bool oneIn(std::size_t calls) { return below(calls) == 0; }

    template <typename List>
    const auto& oneOf(const List& list) {
        return *std::next(std::begin(list), static_cast<std::ptrdiff_t>(below(std::size(list))));
    }

  private:
    std::mt19937_64 engine_;
};

} // namespace support

#endif
