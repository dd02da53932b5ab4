#include <libStencilorJson/json_grammar.h>
#include <libStencilorJson/json_text.h>

#include <algorithm>

namespace kel::Stencilor::internal {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view escapeLetters = "\"\\/bfnrt";
constexpr std::string_view escapedCharacters = "\"\\/\b\f\n\r\t";

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20;
}

/// Whether it needs no look at its neighbours in a string.
bool isPlain(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x20 && value < 0x80 && value != '"' && value != '\\';
}

std::size_t countPlain(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPlain) -
                                    text.begin());
}

std::string escapeOf(std::string_view control) {
    const std::size_t index = escapedCharacters.find(control);
    return index == std::string_view::npos ? quotable(control)
                                           : std::string("\\") + escapeLetters[index];
}

bool isInWord(char byte) {
    const char lower = static_cast<char>(byte | 0x20);
    return (lower >= 'a' && lower <= 'z') || digits.find(byte) != std::string_view::npos;
}

bool isLeadingSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isTrailingSurrogate(std::uint32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// -1 for what is not a hexadecimal digit.
int hexadecimalValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

// text = [ byte-order mark ] value end
void JsonGrammar::textRule() {
    literal(byteOrderMark);
    skipWhitespace();
    if (root_ == JsonRoot::Object && !isAtOneOf("{")) {
        failExpecting("an object");
    }
    valueRule("a value");
    while (!open_.empty()) {
        if (open_.back().kind == Kind::Array) {
            elementRule();
        } else {
            memberRule();
        }
    }
    skipWhitespace();
    if (position_ < text_.size()) {
        failExpecting("the end of the text");
    }
}

// value = object | array | string | number | "true" | "false" | "null"
// Of an array or object the opening bracket only; the rest is read by elementRule() or
// memberRule().
void JsonGrammar::valueRule(const char* expectation) {
    skipWhitespace();
    const std::size_t begin = position_;
    if (isAtOneOf("{")) {
        open(Kind::Object);
    } else if (isAtOneOf("[")) {
        open(Kind::Array);
    } else if (isAtOneOf("\"")) {
        const std::string_view text = stringRule();
        receiver_.string(text, rangeFrom(begin));
    } else if (isAtOneOf("-") || isAtOneOf(digits)) {
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
// One element with what separates it from the last one, or the closing bracket.
void JsonGrammar::elementRule() {
    skipWhitespace();
    if (isAtOneOf("]")) {
        close();
    } else if (open_.back().isEmpty) {
        open_.back().isEmpty = false;
        valueRule("a value or ']'");
    } else if (literal(",")) {
        valueRule("a value after ','");
    } else {
        failExpecting("',' or ']' after an array element");
    }
}

// object = "{" [ member { "," member } ] "}"
// member = string ":" value
// One member with what separates it from the last one, or the closing bracket.
void JsonGrammar::memberRule() {
    skipWhitespace();
    if (isAtOneOf("}")) {
        close();
        return;
    }
    if (open_.back().isEmpty) {
        open_.back().isEmpty = false;
        nameRule("a name in quotation marks or '}'");
    } else if (literal(",")) {
        nameRule("a name in quotation marks after ','");
    } else {
        failExpecting("',' or '}' after an object member");
    }
    skipWhitespace();
    if (!literal(":")) {
        failExpecting("':' after a name");
    }
    valueRule("a value after ':'");
}

// The string of a member.
void JsonGrammar::nameRule(const char* expectation) {
    skipWhitespace();
    if (!isAtOneOf("\"")) {
        failExpecting(expectation);
    }
    const std::size_t begin = position_;
    const std::string_view name = stringRule();
    if (!open_.back().names.insert(name)) {
        const std::string_view written = text_.substr(begin + 1, position_ - begin - 2);
        failAt(begin, "duplicate name \"" + quotable(written) + "\"");
    }
    receiver_.name(name, rangeFrom(begin));
}

// string = '"' { characters | escape } '"'
// Without escapes, the text is the one that is written.
std::string_view JsonGrammar::stringRule() {
    literal("\"");
    const std::string_view written = charactersRule();
    if (literal("\"")) {
        return written;
    }
    decoded_ = written;
    while (!literal("\"")) {
        escapeRule();
        decoded_ += charactersRule();
    }
    return decoded_;
}

// characters = any, in UTF-8, but '"', "\" and those below U+0020
std::string_view JsonGrammar::charactersRule() {
    const std::size_t begin = position_;
    while (!isAtOneOf("\"\\")) {
        if (position_ < text_.size() && isControl(text_[position_])) {
            failAt(position_, "a control character in a string must be written as " +
                                  escapeOf(text_.substr(position_, 1)));
        }
        if (nextSize() == 0) {
            failExpecting("'\"' at the end of a string");
        }
        position_ += nextSize();
        position_ += countPlain(text_.substr(position_));
    }
    return text_.substr(begin, position_ - begin);
}

// escape = "\" ( '"' | "\" | "/" | "b" | "f" | "n" | "r" | "t" | "u" unit )
void JsonGrammar::escapeRule() {
    const std::size_t begin = position_;
    literal("\\");
    if (literal("u")) {
        surrogateRule(begin, unitRule());
    } else if (isAtOneOf(escapeLetters)) {
        decoded_ += escapedCharacters[escapeLetters.find(text_[position_++])];
    } else {
        failExpecting("one of \" \\ / b f n r t u after '\\'");
    }
}

// A leading surrogate is followed by "\u" and a trailing one; together they are one character.
void JsonGrammar::surrogateRule(std::size_t begin, std::uint32_t unit) {
    if (isTrailingSurrogate(unit)) {
        failAt(begin, "expected a leading surrogate, \\uD800 to \\uDBFF, before a trailing one");
    }
    if (isLeadingSurrogate(unit)) {
        const std::uint32_t trailing = literal("\\u") ? unitRule() : 0;
        if (!isTrailingSurrogate(trailing)) {
            failAt(begin, "expected a trailing surrogate, \\uDC00 to \\uDFFF, after a leading one");
        }
        unit = 0x10000 + ((unit - 0xD800) << 10) + (trailing - 0xDC00);
    }
    appendCharacter(decoded_, unit);
}

// unit = 4 hexadecimal digits
std::uint32_t JsonGrammar::unitRule() {
    std::uint32_t unit = 0;
    for (int i = 0; i < 4; ++i) {
        const int value = position_ < text_.size() ? hexadecimalValue(text_[position_]) : -1;
        if (value < 0) {
            failExpecting("4 hexadecimal digits after '\\u'");
        }
        unit = unit << 4 | static_cast<std::uint32_t>(value);
        ++position_;
    }
    return unit;
}

// number = [ "-" ] ( "0" | digits ) [ "." digits ] [ ( "e" | "E" ) [ "+" | "-" ] digits ]
std::string_view JsonGrammar::numberRule() {
    const std::size_t begin = position_;
    literal("-");
    if (!literal("0")) {
        digitsRule("a digit after '-'");
    } else if (isAtOneOf(digits)) {
        failAt(begin, "a number must not have leading zeros");
    }
    if (literal(".")) {
        digitsRule("a digit after '.'");
    }
    if (isAtOneOf("eE")) {
        ++position_;
        position_ += isAtOneOf("+-") ? 1u : 0u;
        digitsRule("a digit in the exponent");
    }
    return text_.substr(begin, position_ - begin);
}

// digits = "0" to "9", one or more
void JsonGrammar::digitsRule(const char* expectation) {
    if (!isAtOneOf(digits)) {
        failExpecting(expectation);
    }
    position_ = std::min(text_.find_first_not_of(digits, position_), text_.size());
}

void JsonGrammar::open(Kind kind) {
    if (open_.size() == deepestJson) {
        failAt(position_, "nested more than " + std::to_string(deepestJson) + " levels deep");
    }
    open_.push_back({kind, position_});
    if (kind == Kind::Array) {
        receiver_.beginArray(position_);
    } else {
        receiver_.beginObject(position_);
    }
    ++position_;
}

void JsonGrammar::close() {
    ++position_;
    const JsonRange range = rangeFrom(open_.back().begin);
    const Kind kind = open_.back().kind;
    open_.pop_back();
    if (kind == Kind::Array) {
        receiver_.endArray(range);
    } else {
        receiver_.endObject(range);
    }
}

void JsonGrammar::skipWhitespace() {
    position_ = std::min(text_.find_first_not_of(" \t\n\r", position_), text_.size());
}

/// How many bytes the next character takes; 0 for malformed UTF-8 and at the end.
std::size_t JsonGrammar::nextSize() const {
    return position_ < text_.size() ? characterSize(text_.substr(position_)) : 0;
}

/// Moves past `expected` if it is next.
bool JsonGrammar::literal(std::string_view expected) {
    const bool isNext = text_.substr(position_).starts_with(expected);
    position_ += isNext ? expected.size() : 0;
    return isNext;
}

bool JsonGrammar::isAtOneOf(std::string_view characters) const {
    return position_ < text_.size() && characters.find(text_[position_]) != std::string_view::npos;
}

void JsonGrammar::failExpecting(const std::string& expectation) const {
    if (position_ < text_.size() && nextSize() == 0) {
        failAt(position_, "malformed UTF-8");
    }
    failAt(position_, "expected " + expectation + ", found " + found());
}

void JsonGrammar::failAt(std::size_t offset, const std::string& reason) const {
    throw errorAt(text_, offset, reason);
}

/// What is next: a word as a whole, otherwise one character.
std::string JsonGrammar::found() const {
    if (position_ == text_.size()) {
        return "the end of the text";
    }
    const std::string_view rest = text_.substr(position_);
    const auto word = std::find_if_not(rest.begin(), rest.end(), isInWord) - rest.begin();
    const std::size_t size = std::max(static_cast<std::size_t>(word), nextSize());
    const std::string quoted = quotable(rest.substr(0, size));
    return quoted == "'" ? "\"'\"" : "'" + quoted + "'";
}

} // namespace kel::Stencilor::internal
