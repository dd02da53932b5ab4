#ifndef LIBSTENCILORANALYSIS_TEXT_SHOWNTEXT_H
#define LIBSTENCILORANALYSIS_TEXT_SHOWNTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

// Text from files and calls, as it is shown to people. Characters that a terminal obeys instead of
// showing them, or that change the order or the place of others, are escaped: control characters
// but for tabs, line and paragraph separators, marks of direction, and those without any width that
// hide text. `\x1B` is an escaped byte, `\u202E` an escaped code point.

namespace kel::Stencilor::Analysis {

/// How one code point is shown.
struct ShownPoint {
    std::string text;
    std::size_t columns; ///< how wide `text` is, wide characters and tabs being one column
    std::size_t size;    ///< the bytes that it is shown for
};

/// The code point that a text, which is not empty, begins with.
ShownPoint showFirst(std::string_view text);

/// A text of one line. Malformed bytes become U+FFFD.
std::string showText(std::string_view text);

/// A text, or its first 200 code points and an ellipsis: what a message quotes of it.
std::string shorten(std::string_view text);

/// A text as a message quotes it, in quotation marks.
std::string quote(std::string_view text);

/// A document of JSON, where the same characters become escapes that its readers undo.
std::string showJson(std::string_view document);

} // namespace kel::Stencilor::Analysis

#endif
