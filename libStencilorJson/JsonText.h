#ifndef LIBSTENCILORJSON_JSONTEXT_H
#define LIBSTENCILORJSON_JSONTEXT_H

/// @file
/// Converts JSON text to values.
///
///     #include <libStencilorJson/JsonText.h>
///     #include <iostream>
///
///     using namespace kel::Stencilor;
///
///     int main() {
///         try {
///             const Value values = valueFromJsonText(R"({"user": {"name": "world"}})");
///             std::cout << buildOutput("Hello, {{ user.name }}!\n", Context(values));
///         } catch (const JsonError& error) {
///             std::cerr << "values.json:" << error.what() << '\n'; // values.json:1:10: ...
///         }
///     }
///
/// An object becomes a dictionary, and an array a list. Numbers become strings with the digits as
/// written. Strings, `true`, `false` and `null` keep their kind. `Context` documents how
/// templates access them: dotted names, `$boolean`, elements of lists.
///
/// The text is JSON as defined by RFC 8259, in UTF-8, of any size; a byte-order mark is optional.
/// Duplicate names in an object, a `$boolean` other than true or false, and more than
/// `Value::deepest` levels are errors.
///
/// `libStencilorJson/Json.h` converts nlohmann-json values.

#include <libStencilor/Value.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kel::Stencilor {

/// Why JSON was rejected, and where. `what()` is `LINE:COLUMN: REASON` for text,
/// `POINTER: REASON` for a value inside another one, and otherwise just the reason.
class JsonError : public std::runtime_error {
  public:
    /// An error in JSON text.
    /// @param line starting at 1
    /// @param column starting at 1, in code points
    /// @param reason the error
    /// @param offset the byte offset
    JsonError(std::size_t line, std::size_t column, const std::string& reason,
              std::size_t offset = 0);

    /// An error that is not in JSON text.
    /// @param reason the error
    explicit JsonError(const std::string& reason);

    /// Returns the location of the error.
    /// @return the line, starting at 1; 0 if the error is not in JSON text
    std::size_t line() const { return line_; }

    /// Returns the location of the error.
    /// @return the column, starting at 1, in code points; 0 if the error is not in JSON text
    std::size_t column() const { return column_; }

    /// Returns the location of the error.
    /// @return the byte offset; 0 if the error is not in JSON text
    std::size_t offset() const { return offset_; }

    /// Returns the reason.
    /// @return `what()` without the line and the column, valid as long as this error
    std::string_view reason() const { return std::string_view(what()).substr(reasonBegin_); }

  private:
    std::size_t line_ = 0;
    std::size_t column_ = 0;
    std::size_t offset_ = 0;
    std::size_t reasonBegin_ = 0; // in what()
};

/// Reads a JSON text.
///
/// Threads: may be called from any thread.
/// Errors: `JsonError`; `std::length_error` for a string, number or name of more than 4 GiB - 1
///   byte; and `std::bad_alloc`.
/// @param text the JSON text, in UTF-8
/// @return the value
Value valueFromJsonText(std::string_view text);

/// @cond
namespace internal {

// For converters from other JSON libraries, such as `libStencilorJson/Json.h`.

bool isValidUtf8(std::string_view text);

/// Escapes `text` as a part of a JSON pointer.
std::string pointerPart(std::string_view text);

} // namespace internal
/// @endcond

} // namespace kel::Stencilor

#endif
