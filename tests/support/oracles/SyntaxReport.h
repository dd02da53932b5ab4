#ifndef TESTS_SUPPORT_ORACLES_SYNTAXREPORT_H
#define TESTS_SUPPORT_ORACLES_SYNTAXREPORT_H

#include <libStencilor/Syntax.h>

#include <string>

namespace support {

/// Looks for a mistake in what `readSyntax` tells of `input`, with the help of the second reading.
/// Empty if there is none; otherwise what is wrong.
///
/// What is told of a fault is checked like this: the tag up to the fault can be completed by what
/// is expected there, so not too much of it was read; and it cannot be completed in any way if the
/// next few bytes are kept, so not too little was read.
std::string findMistakeInReport(const std::string& input);

} // namespace support

#endif
