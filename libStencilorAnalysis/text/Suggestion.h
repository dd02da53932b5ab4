#ifndef LIBSTENCILORANALYSIS_TEXT_SUGGESTION_H
#define LIBSTENCILORANALYSIS_TEXT_SUGGESTION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Known words, among which the one is found that a misspelt word was meant to be: other case or
/// separators, two letters exchanged, one missing, doubled or wrong, singular for plural.
///
/// Ownership: borrows the words.
/// Cost: adding a word is linear in its size, finding one as well, however many words there are.
class KnownWords {
  public:
    KnownWords() = default;

    /// Of words that are equally near, the first one added is found.
    explicit KnownWords(const std::vector<std::string>& words);

    void add(std::string_view word);

    /// The known word that is nearest to another one; empty if none is near, or if that one is
    /// known itself.
    std::string_view findNearest(std::string_view word) const;

  private:
    std::vector<std::string_view> words_;
    std::unordered_multimap<std::uint64_t, std::size_t> byLetters_; // indices, whatever the order
};

/// `; did you mean "WORD"?`, or nothing for an empty word: what a message ends with.
std::string didYouMean(std::string_view word);

} // namespace kel::Stencilor::Analysis

#endif
