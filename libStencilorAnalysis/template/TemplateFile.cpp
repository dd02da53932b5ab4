#include <libStencilorAnalysis/template/TemplateFile.h>
#include <libStencilorAnalysis/text/CodePoint.h>

#include <algorithm>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The minimum distance of marks in a long line, in bytes.
constexpr std::size_t markDistance = 256;

bool opens(Kind kind) {
    return kind == Kind::If || kind == Kind::For || kind == Kind::Else;
}

bool closes(Kind kind) {
    return kind == Kind::EndIf || kind == Kind::EndFor || kind == Kind::Else;
}

} // namespace

TemplateFile::TemplateFile(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)) {
    faults_ = readTemplate(text_, parts_);
    fault_ = faults_.faults.empty() ? SyntaxFault() : faults_.faults.front().fault;
    findLines();
    findBlocks();
}

void TemplateFile::findLines() {
    std::size_t begin = text_.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    for (std::size_t end = text_.find('\n', begin); end != text_.npos;
         end = text_.find('\n', begin)) {
        markLine(begin, end);
        begin = end + 1;
    }
    markLine(begin, text_.size());
}

void TemplateFile::markLine(std::size_t begin, std::size_t end) {
    lines_.push_back(static_cast<unsigned int>(begin));
    unsigned int points = 0;
    for (std::size_t offset = begin; end - offset > markDistance;) {
        for (const std::size_t next = offset + markDistance; offset < next; ++points) {
            offset += firstCodePoint(std::string_view(text_).substr(offset)).size;
        }
        marks_.push_back({static_cast<unsigned int>(offset), points});
    }
}

/// In a rejected template, the end of an unclosed block remains 0.
void TemplateFile::findBlocks() {
    ends_.resize(parts_.size());
    loops_.resize(parts_.size());
    struct Block {
        unsigned int part;
        unsigned int loop; // around it
    };
    std::vector<Block> open;
    unsigned int loop = none;
    for (unsigned int i = 0; i < parts_.size(); ++i) {
        const Kind kind = parts_[i].kind;
        if (closes(kind)) {
            ends_[open.back().part] = i;
            loop = open.back().loop;
            open.pop_back();
        }
        loops_[i] = loop;
        if (opens(kind)) {
            open.push_back({i, loop});
            loop = kind == Kind::For ? i : loop;
        }
    }
}

std::size_t TemplateFile::afterBlock(std::size_t part) const {
    const std::size_t end = endOf(part);
    return (parts_[end].kind == Kind::Else ? endOf(end) : end) + 1;
}

std::string_view TemplateFile::slice(SyntaxRange range) const {
    return std::string_view(text_).substr(range.begin, range.end - range.begin);
}

Position TemplateFile::positionOf(std::size_t offset) const {
    const Line line = lineAt(offset);
    // A line break, of one or two bytes, is in the column after the last one.
    const std::size_t end = std::clamp(offset, line.begin, line.begin + line.text.size());
    Mark from{static_cast<unsigned int>(line.begin), 0};
    const auto after =
        std::upper_bound(marks_.begin(), marks_.end(), end,
                         [](std::size_t value, const Mark& mark) { return value < mark.offset; });
    if (after != marks_.begin() && after[-1].offset > line.begin) {
        from = after[-1];
    }
    const std::string_view rest = std::string_view(text_).substr(from.offset, end - from.offset);
    return {line.number, from.points + countCodePoints(rest) + 1};
}

Line TemplateFile::lineAt(std::size_t offset) const {
    const auto after = std::upper_bound(lines_.begin() + 1, lines_.end(), offset);
    const std::size_t begin = after[-1];
    const bool isLast = after == lines_.end();
    const std::size_t end = isLast ? text_.size() : *after - 1;
    std::string_view line = std::string_view(text_).substr(begin, end - begin);
    if (line.ends_with('\r') && !isLast) {
        line.remove_suffix(1);
    }
    return {static_cast<std::size_t>(after - lines_.begin()), begin, line};
}

} // namespace kel::Stencilor::Analysis
