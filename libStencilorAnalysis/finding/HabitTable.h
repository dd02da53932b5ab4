#ifndef LIBSTENCILORANALYSIS_FINDING_HABITTABLE_H
#define LIBSTENCILORANALYSIS_FINDING_HABITTABLE_H

#include <libStencilor/Syntax.h>

#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A malformed tag, without the signs that trim whitespace in other engines.
struct HabitTag {
    SyntaxExpectation expected;
    std::string_view text;    ///< the whole tag
    std::string_view inside;  ///< the text between its delimiters, trimmed
    std::string_view rest;    ///< the end of `inside` that could not be read
    std::string code;         ///< `inside` with spaces in place of quoted text
    std::string keyword;      ///< its first word in lower case
    std::string_view written; ///< that word as written
    bool isClosed;            ///< true if its closing delimiter was found
    bool endsLine;            ///< true if there is none, and another line follows

    bool isSubstitution() const { return text.starts_with("{{"); }
};

/// True for the characters of names, except for the dot.
bool isNamePart(char byte);

/// True where the first word of a tag is expected.
bool expectsKeyword(SyntaxExpectation expected);

/// The notes of the rows that match a tag, at most one from each group of the table.
std::vector<std::string> matchHabits(const HabitTag& tag);

} // namespace kel::Stencilor::Analysis

#endif
