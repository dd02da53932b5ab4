#ifndef LIBSTENCILORJSON_JSONTEXT_H
#define LIBSTENCILORJSON_JSONTEXT_H

/// @file
/// Makes values of JSON texts.
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
/// An object becomes a dictionary, an array a list, a string a text, a number a text of the digits
/// that are written; `true`, `false` and `null` become what they are. What a `Context` makes of
/// them is documented there: dotted names, `$boolean`, the elements of lists.
///
/// Texts are JSON as RFC 8259 defines it, in UTF-8, of any size, with or without a byte-order mark.
/// Also errors: the same name twice in an object, `$boolean` with a value other than true and
/// false, more than `Value::deepest` levels.
///
/// `libStencilorJson/Json.h` makes values of those of nlohmann-json.

#include <libStencilor/Value.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kel::Stencilor {

/// Why JSON was refused, and where. `what()` is `LINE:COLUMN: REASON` for a text, `POINTER: REASON`
/// for a value inside another one, and otherwise the reason alone.
class JsonError : public std::runtime_error {
  public:
    /// A fault in a text.
    /// @param line counted from 1
    /// @param column counted from 1, in code points
    /// @param reason what is wrong there
    /// @param offset the place in bytes from the beginning
    JsonError(std::size_t line, std::size_t column, const std::string& reason,
              std::size_t offset = 0);

    /// A fault that is not in a text.
    /// @param reason what is wrong
    explicit JsonError(const std::string& reason);

    /// Says where the fault is.
    /// @return the line, counted from 1; 0 where the fault is not in a text
    std::size_t line() const { return line_; }

    /// Says where the fault is.
    /// @return the column, counted from 1, in code points; 0 where the fault is not in a text
    std::size_t column() const { return column_; }

    /// Says where the fault is.
    /// @return the bytes before it; 0 where the fault is not in a text
    std::size_t offset() const { return offset_; }

    /// Says what is wrong.
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
///   byte; `std::bad_alloc`.
/// @param text UTF-8, which is only read
/// @return the value
Value valueFromJsonText(std::string_view text);

/// @cond
namespace internal {

// For what makes values of other kinds of JSON, such as `libStencilorJson/Json.h`.

bool isValidUtf8(std::string_view text);

/// `text` as a part of a JSON pointer.
std::string pointerPart(std::string_view text);

} // namespace internal
/// @endcond

} // namespace kel::Stencilor

#endif
