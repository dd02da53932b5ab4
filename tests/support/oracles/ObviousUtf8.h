#ifndef TESTS_SUPPORT_ORACLES_OBVIOUSUTF8_H
#define TESTS_SUPPORT_ORACLES_OBVIOUSUTF8_H

#include <string>
#include <string_view>

namespace support {

/// `text` with each maximal malformed part replaced by U+FFFD, read off the standard's table of
/// well-formed sequences. Slow, and independent of the library.
std::string obviouslyRepairedUtf8(std::string_view text);

} // namespace support

#endif
