#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>

namespace kel::Stencilor::Analysis {

namespace {

/// The maximum length of a shown line, in code points. Longer lines are cut around the range.
constexpr std::size_t widestLine = 160;

/// The maximum size of a code point in bytes.
constexpr std::size_t widestPoint = 4;

/// The offset of the code point `count` before `offset`, or of the line. Linear in `count`.
std::size_t stepBack(std::string_view line, std::size_t offset, std::size_t count) {
    std::size_t begin = offset - std::min(offset, (count + 1) * widestPoint);
    std::size_t points = countCodePoints(line.substr(begin, offset - begin));
    for (; points > count; --points) {
        begin += firstCodePoint(line.substr(begin)).size;
    }
    return begin;
}

bool isWider(std::string_view line, std::size_t count) {
    return line.size() > count * widestPoint || countCodePoints(line) > count;
}

/// The mark below a code point: a caret at the beginning of the range, then tildes.
std::string marksBelow(const ShownPoint& point, std::size_t offset, SyntaxRange range) {
    if (offset + point.size <= range.begin) {
        return point.text == "\t" ? "\t" : std::string(point.columns, ' ');
    }
    if (offset <= range.begin) {
        return "^" + std::string(point.columns - 1, '~');
    }
    return std::string(offset < range.end ? point.columns : 0, '~');
}

/// Terminal escape sequences.
constexpr const char* bold = "\x1B[1m";
constexpr const char* marked = "\x1B[1;32m";
constexpr const char* plain = "\x1B[0m";

const char* colorOf(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return "\x1B[1;31m";
    case Severity::Warning:
        return "\x1B[1;35m";
    case Severity::Note:
        break;
    }
    return "\x1B[1;36m";
}

std::string paint(const char* color, const std::string& text, bool colored) {
    return colored ? color + text + plain : text;
}

/// A line with the marks of a range below it.
std::string formatLine(std::string_view line, SyntaxRange range, bool colored) {
    const bool cut = isWider(line, widestLine);
    std::size_t offset = cut ? stepBack(line, range.begin, widestLine / 2 - 1) : 0;
    std::string shown = offset > 0 ? "..." : "";
    std::string marks(shown.size(), ' ');
    for (std::size_t count = 0; offset < line.size() && (!cut || count < widestLine); ++count) {
        const ShownPoint point = showFirst(line.substr(offset));
        shown += point.text;
        marks += marksBelow(point, offset, range);
        offset += point.size;
    }
    marks += range.begin >= line.size() ? "^" : ""; // at the end of the line
    return shown + (offset < line.size() ? "..." : "") + "\n" + paint(marked, marks, colored) +
           "\n";
}

/// Converts a range of a template to one of a line.
SyntaxRange rangeIn(const Line& line, SyntaxRange range) {
    const auto begin = static_cast<unsigned int>(line.begin);
    return {range.begin - std::min(range.begin, begin), range.end - std::min(range.end, begin)};
}

std::string formatPlace(const Place& place, Severity severity, const std::string& message,
                        bool colored) {
    const Position position = place.file->positionOf(place.range.begin);
    const Line line = place.file->lineAt(place.range.begin);
    const std::string where = showText(place.file->name()) + ":" + std::to_string(position.line) +
                              ":" + std::to_string(position.column) + ":";
    return paint(bold, where, colored) + " " +
           paint(colorOf(severity), std::string(severityName(severity)) + ":", colored) + " " +
           paint(bold, showText(message), colored) + "\n" +
           formatLine(line.text, rangeIn(line, place.range), colored);
}

} // namespace

std::string formatText(const std::vector<Finding>& findings, bool colored) {
    std::string text;
    for (const Finding& finding : findings) {
        text += formatPlace(finding.place, finding.severity(), finding.message, colored);
        for (const Note& note : finding.notes) {
            text += formatPlace(note.place, Severity::Note, note.message, colored);
        }
    }
    return text;
}

} // namespace kel::Stencilor::Analysis
