#include <libStencilorAnalysis/text/ShownText.h>
#include <libStencilorAnalysis/text/Suggestion.h>

#include <algorithm>

namespace kel::Stencilor::Analysis {

namespace {

/// Longer words are only compared for case and separators.
constexpr std::size_t longestCompared = 64;

/// The maximum number of words with the same letters that are compared.
constexpr int mostCompared = 8;

/// Up to this number, all words are compared, which is faster.
constexpr std::size_t mostComparedAll = 32;

constexpr std::string_view alphabet = "abcdefghijklmnopqrstuvwxyz0123456789./";

/// Folds what is easily confused: case and separators.
std::string foldWord(std::string_view word) {
    std::string folded;
    for (const char byte : word) {
        if (byte != '_' && byte != '-') {
            folded += byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
        }
    }
    return folded;
}

/// The weights of letters in the sum of a word, which is independent of their order.
std::uint64_t weightOf(char letter) {
    std::uint64_t mixed = (static_cast<unsigned char>(letter) + 1) * 0x9E3779B97F4A7C15u;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
    return mixed ^ (mixed >> 31);
}

std::uint64_t sumOf(std::string_view letters) {
    std::uint64_t sum = 0;
    for (const char letter : letters) {
        sum += weightOf(letter);
    }
    return sum;
}

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool isPluralOf(std::string_view plural, std::string_view singular) {
    return (plural.ends_with("s") && plural.substr(0, plural.size() - 1) == singular) ||
           (plural.ends_with("es") && plural.substr(0, plural.size() - 2) == singular) ||
           (plural.ends_with("ies") && singular.ends_with("y") &&
            plural.substr(0, plural.size() - 3) == singular.substr(0, singular.size() - 1));
}

enum Distance { Same, Exchanged, Plural, LetterMore, OtherLetter, Far };

/// The difference between two folded words.
Distance compare(std::string_view one, std::string_view other) {
    if (one == other) {
        return Same;
    }
    if (isPluralOf(one, other) || isPluralOf(other, one)) {
        return Plural;
    }
    if (std::min(one.size(), other.size()) < 3) {
        return Far;
    }
    const auto [first, second] = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    const std::string_view left = one.substr(static_cast<std::size_t>(first - one.begin()));
    const std::string_view right = other.substr(static_cast<std::size_t>(second - other.begin()));
    if (left.size() != right.size()) {
        const bool longer = left.size() > right.size();
        return (longer ? left.substr(1) == right : left == right.substr(1)) ? LetterMore : Far;
    }
    std::size_t last = left.size() - 1;
    while (left[last] == right[last]) {
        --last;
    }
    if (last > 0 && left[0] == right[last] && left[last] == right[0] &&
        left.substr(1, last - 1) == right.substr(1, last - 1)) {
        return Exchanged;
    }
    return left.substr(1) == right.substr(1) && one.size() > 3 && !isDigit(left[0]) &&
                   !isDigit(right[0])
               ? OtherLetter
               : Far;
}

/// The sums of the words that are similar to one with this sum and these letters.
std::vector<std::uint64_t> findSums(const std::string& folded) {
    const std::uint64_t sum = sumOf(folded);
    std::vector<std::uint64_t> sums = {sum};
    if (folded.size() > longestCompared) {
        return sums;
    }
    std::string letters = folded;
    std::sort(letters.begin(), letters.end());
    letters.erase(std::unique(letters.begin(), letters.end()), letters.end());
    for (const char more : alphabet) {
        sums.push_back(sum + weightOf(more));
    }
    for (const char less : letters) {
        sums.push_back(sum - weightOf(less));
        for (const char more : alphabet) {
            sums.push_back(sum - weightOf(less) + weightOf(more));
        }
    }
    const std::uint64_t ies = sumOf("ies") - sumOf("y");
    sums.insert(sums.end(), {sum + sumOf("es"), sum - sumOf("es"), sum + ies, sum - ies});
    return sums;
}

struct Search {
    std::string folded;
    Distance nearest = Far;
    std::size_t found = 0;

    /// Returns false for the word itself.
    bool compareWith(std::string_view word, std::string_view known, std::size_t index) {
        const Distance distance = compare(folded, foldWord(known));
        if (distance < nearest || (distance == nearest && index < found)) {
            nearest = distance;
            found = index;
        }
        return known != word;
    }
};

} // namespace

KnownWords::KnownWords(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        add(word);
    }
}

void KnownWords::add(std::string_view word) {
    byLetters_.emplace(sumOf(foldWord(word)), words_.size());
    words_.push_back(word);
}

std::string_view KnownWords::findNearest(std::string_view word) const {
    Search search{foldWord(word)};
    if (words_.size() <= mostComparedAll) {
        for (std::size_t index = 0; index < words_.size(); ++index) {
            if (!search.compareWith(word, words_[index], index)) {
                return {};
            }
        }
    } else {
        for (const std::uint64_t sum : findSums(search.folded)) {
            auto [at, end] = byLetters_.equal_range(sum);
            for (int count = 0; at != end && count < mostCompared; ++at, ++count) {
                if (!search.compareWith(word, words_[at->second], at->second)) {
                    return {};
                }
            }
        }
    }
    return search.nearest == Far ? std::string_view() : words_[search.found];
}

std::string didYouMean(std::string_view word) {
    return word.empty() ? "" : "; did you mean " + quote(word) + "?";
}

} // namespace kel::Stencilor::Analysis
