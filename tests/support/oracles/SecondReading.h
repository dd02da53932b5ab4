#ifndef TESTS_SUPPORT_ORACLES_SECONDREADING_H
#define TESTS_SUPPORT_ORACLES_SECONDREADING_H

#include <libStencilor/template/syntax_tree.h>

#include <string>

namespace support {

/// A second implementation of the language, in Spirit Qi: slow, recursive, and independent of the
/// parser. Like `parseTemplate`, but for text without a NUL.
bool readOnceMore(const std::string& text, kel::Stencilor::internal::content_list& nodes);

} // namespace support

#endif
