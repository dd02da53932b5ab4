#ifndef TESTS_SUPPORT_ORACLES_READINGCOMPARISON_H
#define TESTS_SUPPORT_ORACLES_READINGCOMPARISON_H

#include <array>
#include <string>
#include <string_view>

namespace support {

/// All that means something in a template, and one of each that does not.
inline constexpr std::array<std::string_view, 22> tokens = {
    "{{",    "}}",  "{%", "%}",     "{",       "if", "else",
    "endif", "for", "in", "endfor", "include", "\"", "x",
    "1",     ".",   "/",  " ",      "\t",      "\n", std::string_view("\0", 1),
    "\xFF"};

/// True if the parser and the second reading say the same of `input`, and make the same tree of it:
/// where it is rejected, of what is complete before the fault.
bool readsTheSame(const std::string& input);

/// The same as a check, which tells the difference, and of what is reported to hosts.
void expectTheSameReading(const std::string& input);

} // namespace support

#endif
