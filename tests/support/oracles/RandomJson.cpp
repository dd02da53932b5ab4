#include "RandomJson.h"

#include <string_view>

namespace support {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view whitespace[] = {"", "", "", " ", "\t", "\n", "\r\n", "  "};
constexpr std::string_view characters[] = {
    "a",       "name",           "$boolean",      "/",
    "\x7F",    "\u00E9",         "\u20AC",        "\U0001F600",
    "\uFFFD",  "\\\"",           "\\\\",          "\\/",
    "\\b",     "\\f\\n",         "\\r\\t",        "\\u0041",
    "\\u0000", "\\u00e9",        "\\uFFFF",       "{:",
    "\\u202E", "\\uD83D\\uDE00", "\\udbff\\udfff"};
constexpr std::string_view signs[] = {"", "", "-"};
constexpr std::string_view integers[] = {"0", "7", "10", "9007199254740993"};
constexpr std::string_view largeIntegers[] = {"18446744073709551615", "9223372036854775808",
                                              "123456789012345678901234567890"};
constexpr std::string_view fractions[] = {"", "", ".0", ".50", ".0000000000000000000000001"};
constexpr std::string_view exponents[] = {"", "", "e5", "E+05", "e-7", "E400", "e-99999999999"};
constexpr std::string_view fragments[] = {
    "\"",   "\\",  "\\u", "\\uD83D", "\\uDE00", "u",  ",",    ":", "{",       "}",
    "[",    "]",   "-",   "+",       ".",       "0",  "01",   "e", "1e",      "true",
    "fals", "NaN", " ",   "\x0B",    "\x1F",    "\n", "\0"sv, "/", "\"a\":1,"};
constexpr std::string_view malformed[] = {"\x80",
                                          "\xC3",
                                          "\xE2\x82",
                                          "\xED\xA0\x80",
                                          "\xC0\xAF",
                                          "\xF4\x90\x80\x80",
                                          "\xF0\x80\x80\x80",
                                          "\xFF",
                                          "\xEF\xBB\xBF"};

class Writer {
  public:
    explicit Writer(Random& random) : random_(random) {}

    std::string text() {
        const std::string mark = random_.oneIn(10) ? "\xEF\xBB\xBF" : "";
        return mark + spaced(value(4));
    }

  private:
    std::string any(const auto& list) { return std::string(random_.oneOf(list)); }
    std::string spaced(const std::string& text) { return any(whitespace) + text + any(whitespace); }
    std::string string() {
        std::string result = "\"";
        for (std::size_t left = random_.below(4); left > 0; --left) {
            result += any(characters);
        }
        return result + "\"";
    }
    std::string number() {
        const std::string integer = random_.oneIn(3) ? any(largeIntegers) : any(integers);
        return any(signs) + integer + any(fractions) + any(exponents);
    }
    std::string items(std::size_t depth, bool named) {
        std::string result;
        for (std::size_t left = random_.below(4); left > 0; --left) {
            const std::string name = named ? spaced(string()) + ":" : "";
            result += name + spaced(value(depth - 1)) + (left > 1 ? "," : "");
        }
        return result.empty() ? any(whitespace) : result;
    }
    std::string value(std::size_t depth) {
        switch (random_.below(depth == 0 ? 5 : 9)) {
        case 0:
            return "null";
        case 1:
            return random_.oneIn(2) ? "true" : "false";
        case 2:
            return number();
        case 3:
        case 4:
            return string();
        case 5:
        case 6:
            return "[" + items(depth, false) + "]";
        default:
            return "{" + items(depth, true) + "}";
        }
    }

    Random& random_;
};

} // namespace

std::string randomJson(Random& random) {
    return Writer(random).text();
}

std::string mutatedJson(Random& random, std::string text) {
    const std::size_t at = random.below(text.size() + 1);
    const std::size_t size = random.below(4);
    const std::string_view fragment =
        random.oneIn(4) ? random.oneOf(malformed) : random.oneOf(fragments);
    switch (random.below(6)) {
    case 0:
        return text.substr(0, at);
    case 1:
        return text.erase(at, size);
    case 2:
        return text.insert(at, text.substr(at, size * 4));
    case 3:
        return text.replace(at, size, 1, static_cast<char>(random.below(256)));
    case 4:
        return text.replace(at, size, fragment);
    default:
        return text.insert(at, fragment);
    }
}

} // namespace support
