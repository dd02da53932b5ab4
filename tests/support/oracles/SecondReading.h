#ifndef TESTS_SUPPORT_ORACLES_SECONDREADING_H
#define TESTS_SUPPORT_ORACLES_SECONDREADING_H

#include <libStencilor/template/syntax_tree.h>

#include <string>

namespace support {

/// The language once more, written with Spirit Qi: slow, recursive, and independent of the parser.
/// As `parseTemplate`, but for text that holds no NUL.
bool readOnceMore(const std::string& text, kel::Stencilor::internal::content_list& nodes);

} // namespace support

#endif
