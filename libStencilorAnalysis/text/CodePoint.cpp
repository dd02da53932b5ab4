#include <libStencilorAnalysis/text/CodePoint.h>

#include <algorithm>
#include <iterator>

namespace kel::Stencilor::Analysis {

namespace {

/// The sequences that begin with a byte from `first` to `last`.
struct Sequence {
    unsigned char first;
    unsigned char last;
    std::size_t size;
    unsigned char secondFirst; // which second bytes may follow
    unsigned char secondLast;
};

constexpr Sequence sequences[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

const Sequence* findSequence(unsigned char lead) {
    const auto found =
        std::find_if(std::begin(sequences), std::end(sequences), [lead](const Sequence& sequence) {
            return sequence.first <= lead && lead <= sequence.last;
        });
    return found == std::end(sequences) ? nullptr : found;
}

bool mayFollow(const Sequence& sequence, std::size_t index, unsigned char byte) {
    return index == 1 ? sequence.secondFirst <= byte && byte <= sequence.secondLast
                      : (byte & 0xC0u) == 0x80u;
}

} // namespace

CodePoint firstCodePoint(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) {
        return {lead, 1};
    }
    const Sequence* const sequence = findSequence(lead);
    if (sequence == nullptr) {
        return {replacement, 1};
    }
    // The lead byte has one bit less for each byte of its sequence.
    char32_t value = lead & (0x7Fu >> sequence->size);
    for (std::size_t i = 1; i < sequence->size; ++i) {
        if (i == text.size() || !mayFollow(*sequence, i, static_cast<unsigned char>(text[i]))) {
            return {replacement, i};
        }
        value = value << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    return {value, sequence->size};
}

std::size_t countCodePoints(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); text.remove_prefix(firstCodePoint(text).size)) {
        ++count;
    }
    return count;
}

} // namespace kel::Stencilor::Analysis
