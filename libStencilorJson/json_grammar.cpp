#include <libStencilor/Value.h>
#include <libStencilorJson/json_grammar.h>
#include <libStencilorJson/json_text.h>

namespace kel::Stencilor::internal {

namespace {

constexpr std::string_view escapeLetters = "\"\\/bfnrt";
constexpr std::string_view escapedCharacters = "\"\\/\b\f\n\r\t";

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20;
}

/// True for a byte of a string that can be accepted on its own.
bool isPlain(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x20 && value < 0x80 && value != '"' && value != '\\';
}

std::string escapeOf(std::string_view control) {
    const std::size_t index = escapedCharacters.find(control);
    return index == std::string_view::npos ? quotable(control)
                                           : std::string("\\") + escapeLetters[index];
}

bool isLeadingSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isTrailingSurrogate(std::uint32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Returns -1 for other characters.
int hexadecimalValue(char digit) {
    if (isDigit(digit)) {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

// text = [ byte-order mark ] value end
void JsonGrammar::textRule() {
    literal(byteOrderMark);
    valueRule("a value");
    while (!open_.empty()) {
        if (open_.back().kind == Kind::Array) {
            elementRule();
        } else {
            memberRule();
        }
    }
    skipWhitespace();
    if (!isAtEnd()) {
        failExpecting("the end of the text");
    }
}

// value = object | array | string | number | "true" | "false" | "null"
// Only reads the opening bracket of an array or object; elementRule() and memberRule() read the
// rest.
void JsonGrammar::valueRule(const char* expectation) {
    skipWhitespace();
    const std::size_t begin = position();
    if (isAt('{')) {
        open(Kind::Object);
    } else if (isAt('[')) {
        open(Kind::Array);
    } else if (isAt('"')) {
        const std::string_view text = stringRule();
        receiver_.string(text, rangeFrom(begin));
    } else if (isAt('-') || isAtDigit()) {
        const std::string_view written = numberRule();
        receiver_.number(written, rangeFrom(begin));
    } else if (literal("true")) {
        receiver_.boolean(true, rangeFrom(begin));
    } else if (literal("false")) {
        receiver_.boolean(false, rangeFrom(begin));
    } else if (literal("null")) {
        receiver_.null(rangeFrom(begin));
    } else {
        failExpecting(expectation);
    }
}

// array = "[" [ value { "," value } ] "]"
// Reads one element with the separator before it, or the closing bracket.
void JsonGrammar::elementRule() {
    skipWhitespace();
    if (isAt(']')) {
        close();
    } else if (open_.back().isEmpty) {
        open_.back().isEmpty = false;
        valueRule("a value or ']'");
    } else if (literal(',')) {
        valueRule("a value after ','");
    } else {
        failExpecting("',' or ']' after an array element");
    }
}

// object = "{" [ member { "," member } ] "}"
// member = string ":" value
// Reads one member with the separator before it, or the closing bracket.
void JsonGrammar::memberRule() {
    skipWhitespace();
    if (isAt('}')) {
        close();
        return;
    }
    if (open_.back().isEmpty) {
        open_.back().isEmpty = false;
        nameRule("a name in quotation marks or '}'");
    } else if (literal(',')) {
        nameRule("a name in quotation marks after ','");
    } else {
        failExpecting("',' or '}' after an object member");
    }
    skipWhitespace();
    if (!literal(':')) {
        failExpecting("':' after a name");
    }
    valueRule("a value after ':'");
}

// Reads the name of a member.
void JsonGrammar::nameRule(const char* expectation) {
    skipWhitespace();
    if (!isAt('"')) {
        failExpecting(expectation);
    }
    const std::size_t begin = position();
    const std::string_view name = stringRule();
    if (!open_.back().names.insert(name)) {
        const std::string_view written = textFrom(begin + 1);
        failAt(begin, "duplicate name \"" + quotable(written.substr(0, written.size() - 1)) + "\"");
    }
    receiver_.name(name, rangeFrom(begin));
}

// string = '"' { characters | escape } '"'
// Without escapes, the result is a part of the JSON text.
std::string_view JsonGrammar::stringRule() {
    literal('"');
    const std::string_view written = charactersRule();
    if (literal('"')) {
        return written;
    }
    decoded_ = written;
    while (!literal('"')) {
        escapeRule();
        decoded_ += charactersRule();
    }
    return decoded_;
}

// characters = any, in UTF-8, but '"', "\" and those below U+0020
std::string_view JsonGrammar::charactersRule() {
    const std::size_t begin = position();
    while (!isAt('"') && !isAt('\\')) {
        if (!isAtEnd() && isControl(rest().front())) {
            failAt(position(), "a control character in a string must be written as " +
                                   escapeOf(rest().substr(0, 1)));
        }
        if (characterSizeHere() == 0) {
            failExpecting("'\"' at the end of a string");
        }
        skip(characterSizeHere());
        skipWhile([](char byte) { return isPlain(byte); });
    }
    return textFrom(begin);
}

// escape = "\" ( '"' | "\" | "/" | "b" | "f" | "n" | "r" | "t" | "u" unit )
void JsonGrammar::escapeRule() {
    const std::size_t begin = position();
    literal('\\');
    if (literal('u')) {
        unitRule(begin);
    } else if (isAtOneOf(escapeLetters)) {
        decoded_ += escapedCharacters[escapeLetters.find(rest().front())];
        skip(1);
    } else {
        failExpecting("one of \" \\ / b f n r t u after '\\'");
    }
}

// unit = 4 hexadecimal digits [ "\u" 4 hexadecimal digits ] A leading and a trailing surrogate form
// one character.
void JsonGrammar::unitRule(std::size_t begin) {
    std::uint32_t unit = hexadecimalRule();
    if (isTrailingSurrogate(unit)) {
        failAt(begin, "expected a leading surrogate, \\uD800 to \\uDBFF, before a trailing one");
    }
    if (isLeadingSurrogate(unit)) {
        const std::uint32_t trailing = literal("\\u") ? hexadecimalRule() : 0;
        if (!isTrailingSurrogate(trailing)) {
            failAt(begin, "expected a trailing surrogate, \\uDC00 to \\uDFFF, after a leading one");
        }
        unit = 0x10000 + ((unit - 0xD800) << 10) + (trailing - 0xDC00);
    }
    appendCharacter(decoded_, unit);
}

std::uint32_t JsonGrammar::hexadecimalRule() {
    std::uint32_t unit = 0;
    for (int i = 0; i < 4; ++i) {
        const int value = isAtEnd() ? -1 : hexadecimalValue(rest().front());
        if (value < 0) {
            failExpecting("4 hexadecimal digits after '\\u'");
        }
        unit = unit << 4 | static_cast<std::uint32_t>(value);
        skip(1);
    }
    return unit;
}

// number = [ "-" ] integer [ "." digits ] [ ( "e" | "E" ) [ "+" | "-" ] digits ]
std::string_view JsonGrammar::numberRule() {
    const std::size_t begin = position();
    literal('-');
    if (!literal('0')) {
        digitsRule("a digit after '-'");
    } else if (isAtDigit()) {
        failAt(begin, "a number must not have leading zeros");
    }
    if (literal('.')) {
        digitsRule("a digit after '.'");
    }
    if (isAtOneOf("eE")) {
        skip(1);
        skip(isAtOneOf("+-") ? 1 : 0);
        digitsRule("a digit in the exponent");
    }
    return textFrom(begin);
}

// digits = one or more of "0" to "9"
void JsonGrammar::digitsRule(const char* expectation) {
    if (!isAtDigit()) {
        failExpecting(expectation);
    }
    skipWhile([](char byte) { return isDigit(byte); });
}

bool JsonGrammar::isAtDigit() const {
    return !isAtEnd() && isDigit(rest().front());
}

void JsonGrammar::open(Kind kind) {
    if (open_.size() == Value::deepest) {
        failAt(position(), "nested more than " + std::to_string(Value::deepest) + " levels deep");
    }
    open_.push_back({kind, position()});
    if (kind == Kind::Array) {
        receiver_.beginArray(position());
    } else {
        receiver_.beginObject(position());
    }
    skip(1);
}

void JsonGrammar::close() {
    skip(1);
    const JsonRange range = rangeFrom(open_.back().begin);
    const Kind kind = open_.back().kind;
    open_.pop_back();
    if (kind == Kind::Array) {
        receiver_.endArray(range);
    } else {
        receiver_.endObject(range);
    }
}

} // namespace kel::Stencilor::internal
