#ifndef LIBSTENCILORJSON_JSON_GRAMMAR_H
#define LIBSTENCILORJSON_JSON_GRAMMAR_H

#include <libStencilorJson/json_cursor.h>
#include <libStencilorJson/json_receiver.h>
#include <libStencilorJson/name_set.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::internal {

/// The JSON of RFC 8259, one function per rule, for one reading of one text.
///
/// How it works: the open arrays and objects are on a stack of its own, so that nesting takes no
///   call stack. Nothing but names and the text of strings with escapes is copied.
/// Ownership: borrows the text and the receiver.
/// Copying: not possible, the rules share one position.
/// Errors: `JsonError` at the first fault of the text; what the receiver throws; `std::bad_alloc`.
///   The receiver has received all that comes before.
///
/// Rules, where whitespace (space, tab, line feed, carriage return) is skipped before each part of
/// those above the line:
///
///     text       = [ byte-order mark ] value end
///     value      = object | array | string | number | "true" | "false" | "null"
///     array      = "[" [ value { "," value } ] "]"
///     object     = "{" [ member { "," member } ] "}"
///     member     = string ":" value
///     ---
///     string     = '"' { characters | escape } '"'
///     characters = any, in UTF-8, but '"', "\" and those below U+0020
///     escape     = "\" ( '"' | "\" | "/" | "b" | "f" | "n" | "r" | "t" | "u" unit )
///     unit       = 4 hexadecimal digits [ "\u" 4 hexadecimal digits ]
///     number     = [ "-" ] integer [ "." digits ] [ ( "e" | "E" ) [ "+" | "-" ] digits ]
///     integer    = "0" | digits, the first of which is not "0"
///     digits     = one or more of "0" to "9"
///
/// The second part of a unit is a trailing surrogate, and follows leading ones only.
///
/// Beyond these, arrays and objects nest at most `Value::deepest` levels, and each name occurs once
/// in its object.
class JsonGrammar : private JsonCursor {
  public:
    JsonGrammar(std::string_view text, JsonReceiver& receiver)
        : JsonCursor(text), receiver_(receiver) {}
    JsonGrammar(const JsonGrammar&) = delete;
    JsonGrammar& operator=(const JsonGrammar&) = delete;

    /// Reads the text. To be called once.
    void read() { textRule(); }

  private:
    enum class Kind { Array, Object };

    /// An array or object whose end has not been read.
    struct Open {
        Kind kind;
        std::size_t begin;
        bool isEmpty = true;
        NameSet<> names{};
    };

    void textRule();
    void valueRule(const char* expectation);
    void elementRule();
    void memberRule();
    void nameRule(const char* expectation);
    std::string_view stringRule();
    std::string_view charactersRule();
    void escapeRule();
    void unitRule(std::size_t begin);
    std::uint32_t hexadecimalRule();
    std::string_view numberRule();
    void digitsRule(const char* expectation);

    bool isAtDigit() const;
    void open(Kind kind);
    void close();

    JsonReceiver& receiver_;
    std::vector<Open> open_;
    std::string decoded_; // the last string that had escapes
};

} // namespace kel::Stencilor::internal

#endif
