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

/// Parses a JSON text as defined by RFC 8259, with one function per rule.
///
/// How it works: it has its own stack of open arrays and objects, so nesting does not use the call
/// stack. Only names and strings with escapes are copied.
/// Ownership: borrows the text and the receiver.
/// Copying: not possible, because the rules share one position.
/// Errors: `JsonError` for the first error in the text, what the receiver throws, and
///   `std::bad_alloc`. The receiver has received everything before the error.
///
/// Rules (those above the line skip whitespace, which is space, tab, line feed and carriage return,
/// before each part):
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
/// The second part of a unit is a trailing surrogate, and only follows a leading one.
///
/// In addition, arrays and objects nest at most `Value::deepest` levels, and names are unique in
/// their object.
class JsonGrammar : private JsonCursor {
  public:
    JsonGrammar(std::string_view text, JsonReceiver& receiver)
        : JsonCursor(text), receiver_(receiver) {}
    JsonGrammar(const JsonGrammar&) = delete;
    JsonGrammar& operator=(const JsonGrammar&) = delete;

    /// Reads the text. Only call this once.
    void read() { textRule(); }

  private:
    enum class Kind { Array, Object };

    /// An open array or object.
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
