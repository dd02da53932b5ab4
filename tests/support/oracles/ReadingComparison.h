#ifndef TESTS_SUPPORT_ORACLES_READINGCOMPARISON_H
#define TESTS_SUPPORT_ORACLES_READINGCOMPARISON_H

#include <array>
#include <string>
#include <string_view>

namespace support {

/// All significant tokens of a template, and one of each insignificant kind.
inline constexpr std::array<std::string_view, 22> tokens = {
    "{{",    "}}",  "{%", "%}",     "{",       "if", "else",
    "endif", "for", "in", "endfor", "include", "\"", "x",
    "1",     ".",   "/",  " ",      "\t",      "\n", std::string_view("\0", 1),
    "\xFF"};

/// True if the parser and the second reading agree on `input`, and make the same tree of it; if it
/// is rejected, of the complete nodes before the fault.
bool readsTheSame(const std::string& input);

/// The same as a check that reports the difference, and also compares the reports to hosts.
void expectTheSameReading(const std::string& input);

} // namespace support

#endif
