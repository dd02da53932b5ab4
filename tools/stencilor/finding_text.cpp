#include <libKel/String.h>

#include <tools/stencilor/finding_format.h>

#include <algorithm>

namespace stencilor {

namespace {

/// What is shown of a line, in code points. One that is longer is cut around what is meant.
constexpr std::size_t widestLine = 160;

/// The code points of a line, as strings of their own. What would disturb a terminal is replaced.
std::vector<std::string> splitLine(std::string_view line) {
    kel::String decoded;
    decoded.UTF8Decode(line.data(), static_cast<unsigned int>(line.size()), false);
    std::vector<std::string> points;
    for (const char byte : decoded.view()) {
        const auto value = static_cast<unsigned char>(byte);
        if ((value & 0xC0u) != 0x80u) {
            points.emplace_back();
        }
        points.back() += (value < 0x20 && value != '\t') || value == 0x7F ? '?' : byte;
    }
    return points;
}

/// The line and below it a caret, and wiggles where more than one column is meant.
std::string formatLine(std::string_view line, std::size_t column, std::size_t width) {
    const std::vector<std::string> points = splitLine(line);
    const std::size_t begin =
        points.size() <= widestLine ? 0 : column - std::min(column, widestLine / 2);
    const std::size_t end = std::min(points.size(), begin + widestLine);
    std::string shown = begin > 0 ? "..." : "";
    std::string marks(shown.size(), ' ');
    for (std::size_t i = begin; i < end; ++i) {
        shown += points[i];
        if (i + 1 < column) {
            marks += points[i] == "\t" ? "\t" : " ";
        }
    }
    marks += "^" + std::string(std::max<std::size_t>(width, 1) - 1, '~');
    return shown + (end < points.size() ? "..." : "") + "\n" + marks + "\n";
}

std::string formatPlace(const Place& place, Severity severity, const std::string& message) {
    const Position position = place.file->positionOf(place.range.begin);
    const std::string_view line = place.file->lineOf(position.line);
    const std::size_t width = countCodePoints(place.file->textOf(place.range));
    return place.file->name() + ":" + std::to_string(position.line) + ":" +
           std::to_string(position.column) + ": " + textOf(severity) + ": " + message + "\n" +
           formatLine(line, position.column, std::min(width, widestLine / 2));
}

} // namespace

std::string formatText(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += formatPlace(finding.place, finding.severity(), finding.message);
        for (const Note& note : finding.notes) {
            text += formatPlace(note.place, Severity::Note, note.message);
        }
    }
    return text;
}

} // namespace stencilor
