#ifndef TESTS_SUPPORT_ORACLES_SYNTAXREPORT_H
#define TESTS_SUPPORT_ORACLES_SYNTAXREPORT_H

#include <libStencilor/Syntax.h>

#include <string>

namespace support {

/// Checks the report of `readSyntax` on `input` with the second reading. Returns an empty text, or
/// a description of the mistake.
///
/// A fault is checked as follows: the tag up to the fault can be completed by what is expected
/// there, so not too much was read; and it cannot be completed in any way that keeps the next few
/// bytes, so not too little was read.
std::string findMistakeInReport(const std::string& input);

} // namespace support

#endif
