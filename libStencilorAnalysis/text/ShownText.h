#ifndef LIBSTENCILORANALYSIS_TEXT_SHOWNTEXT_H
#define LIBSTENCILORANALYSIS_TEXT_SHOWNTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

// Escapes text from files and arguments before it is shown to people: control characters other than
// tabs, line and paragraph separators, direction marks, and invisible characters. They would
// control a terminal, or change how other text appears. `\x1B` is an escaped byte, `\u202E` an
// escaped code point.

namespace kel::Stencilor::Analysis {

/// The displayed form of one code point.
struct ShownPoint {
    std::string text;
    std::size_t columns; ///< the width of `text`; tabs and wide characters count as one column
    std::size_t size;    ///< the size of the original in bytes
};

/// The first code point of a non-empty text.
ShownPoint showFirst(std::string_view text);

/// Escapes text of one line. Malformed bytes become U+FFFD.
std::string showText(std::string_view text);

/// Shortens text for a message to its first 200 code points and an ellipsis.
std::string shorten(std::string_view text);

/// Shortens text and puts it in quotation marks.
std::string quote(std::string_view text);

/// Escapes the same characters in a JSON document by JSON's own escapes.
std::string showJson(std::string_view document);

} // namespace kel::Stencilor::Analysis

#endif
