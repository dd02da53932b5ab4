#include "../support/Test.h"

#include <tools/stencilor/lsp/IndexedText.h>

namespace stencilor::lsp {
namespace {

struct PlaceCase {
    std::string name;
    std::string text;
    std::size_t offset;
    TextPosition utf16;
    TextPosition utf8;
};

const std::vector<PlaceCase> placeCases = {
    {"the beginning", "ab", 0, {0, 0}, {0, 0}},
    {"the end of text without a line break", "ab", 2, {0, 2}, {0, 2}},
    {"after a line break", "ab\nc", 4, {1, 1}, {1, 1}},
    {"after CR LF", "ab\r\nc", 4, {1, 0}, {1, 0}},
    {"after a lone CR", "ab\rc", 3, {1, 0}, {1, 0}},
    {"after two bytes that are one unit", "\xC3\xA9x", 2, {0, 1}, {0, 2}},
    {"after three bytes that are one unit", "\xE2\x82\xACx", 3, {0, 1}, {0, 3}},
    {"after four bytes that are two units", "\xF0\x9F\x8D\xB5x", 4, {0, 2}, {0, 4}},
    {"an empty text", "", 0, {0, 0}, {0, 0}},
    {"after a line break at the end", "a\n", 2, {1, 0}, {1, 0}},
    {"after a block", std::string(300, 'x') + "\xC3\xA9y", 302, {0, 301}, {0, 302}},
    {"within the line after a block", std::string(300, '\n') + "xy", 301, {300, 1}, {300, 1}},
};

TEST(IndexedText, FindsPlaces) {
    for (const PlaceCase& each : placeCases) {
        SCOPED_TRACE(each.name);
        const IndexedText utf16(Encoding::Utf16, each.text);
        const IndexedText utf8(Encoding::Utf8, each.text);
        EXPECT_EQ(utf16.positionOf(each.offset), each.utf16);
        EXPECT_EQ(utf8.positionOf(each.offset), each.utf8);
        EXPECT_EQ(utf16.offsetOf(each.utf16), each.offset);
        EXPECT_EQ(utf8.offsetOf(each.utf8), each.offset);
    }
}

struct Nearest {
    std::string name;
    Encoding encoding;
    TextPosition position;
    std::size_t offset;
};

TEST(IndexedText, MapsPlacesThatDoNotExistToTheNearestOne) {
    const std::string text = "a\xF0\x9F\x8D\xB5\r\nbc";
    const std::size_t far = static_cast<std::size_t>(-1);
    for (const Nearest& each : std::vector<Nearest>{
             {"a character after the end of its line", Encoding::Utf16, {0, 9}, 5},
             {"a line after the last one", Encoding::Utf16, {9, 0}, 9},
             {"the largest numbers", Encoding::Utf16, {0, far}, 5},
             {"the largest numbers on the last line", Encoding::Utf16, {1, far}, 9},
             {"the middle of a pair of units", Encoding::Utf16, {0, 2}, 1},
             {"the middle of a character", Encoding::Utf8, {0, 3}, 1},
         }) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(IndexedText(each.encoding, text).offsetOf(each.position), each.offset);
    }
}

/// The line breaks and UTF-16 units before an offset, counted from the beginning.
TextPosition countTo(const std::string& text, std::size_t offset, Encoding encoding) {
    TextPosition position;
    for (std::size_t i = 0; i < offset; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool isPair = byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (byte == '\n' || (byte == '\r' && !isPair)) {
            position = {position.line + 1, 0};
        } else if (encoding == Encoding::Utf8) {
            ++position.character;
        } else {
            position.character += (byte & 0xC0) == 0x80 ? 0 : byte >= 0xF0 ? 2 : 1;
        }
    }
    return position;
}

TEST(IndexedText, FindsTheSamePlacesAfterChanges) {
    const std::vector<std::string> pieces = {
        "\r", "\n", "\r\n", "x", "\xC3\xA9", "\xF0\x9F\x8D\xB5", std::string(400, 'y'), ""};
    std::mt19937 random(7);
    const auto below = [&random](std::size_t count) { return random() % count; };
    for (int round = 0; round < 300; ++round) {
        const Encoding encoding = round % 2 == 0 ? Encoding::Utf16 : Encoding::Utf8;
        IndexedText text(encoding);
        for (int change = 0; change < 30; ++change) {
            const std::string before = text.text();
            std::size_t begin = text.offsetOf(text.positionOf(below(before.size() + 1)));
            std::size_t end =
                text.offsetOf(text.positionOf(begin + below(before.size() + 1 - begin)));
            end = std::max(begin, end);
            const std::string& piece = pieces[below(pieces.size())];
            text.replace(begin, end, piece);
            std::string expected = before;
            expected.replace(begin, end - begin, piece);
            ASSERT_EQ(text.text(), expected);
            const std::size_t offset = below(expected.size() + 1);
            ASSERT_EQ(text.positionOf(offset), countTo(expected, offset, encoding))
                << "round " << round << ", change " << change;
        }
    }
}

} // namespace
} // namespace stencilor::lsp
