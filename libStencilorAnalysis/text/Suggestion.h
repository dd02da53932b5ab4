#ifndef LIBSTENCILORANALYSIS_TEXT_SUGGESTION_H
#define LIBSTENCILORANALYSIS_TEXT_SUGGESTION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Known words, among which to find the correction of a misspelled word. It may differ in case, in
/// separators, by two swapped letters, or by one missing, doubled or wrong letter, or be the plural
/// or singular.
///
/// Ownership: borrows the words.
/// Cost: adding and finding a word takes linear time in its size, regardless of the number of
///   words.
class KnownWords {
  public:
    KnownWords() = default;

    /// Among equally similar words, the one that was added first is found.
    explicit KnownWords(const std::vector<std::string>& words);

    void add(std::string_view word);

    /// The known word that is most similar to `word`; empty if there is none, or if `word` is
    /// known.
    std::string_view findNearest(std::string_view word) const;

  private:
    std::vector<std::string_view> words_;
    std::unordered_multimap<std::uint64_t, std::size_t>
        byLetters_; // indices, independent of the order of letters
};

/// The end of a message: `; did you mean "WORD"?`, or nothing for an empty word.
std::string didYouMean(std::string_view word);

} // namespace kel::Stencilor::Analysis

#endif
