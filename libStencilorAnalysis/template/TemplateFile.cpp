#include <libKel/String.h>
#include <libStencilorAnalysis/template/TemplateFile.h>
#include <libStencilorAnalysis/text/CodePoint.h>

#include <algorithm>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

class PartList final : public SyntaxVisitor {
  public:
    explicit PartList(std::vector<SyntaxElement>& parts) : parts_(parts) {}

    void visit(const SyntaxElement& element) override { parts_.push_back(element); }

  private:
    std::vector<SyntaxElement>& parts_;
};

std::vector<std::size_t> findLines(std::string_view text) {
    std::vector<std::size_t> lines = {text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0};
    for (std::size_t end = text.find('\n'); end != text.npos; end = text.find('\n', end + 1)) {
        lines.push_back(end + 1);
    }
    return lines;
}

bool opens(Kind kind) {
    return kind == Kind::If || kind == Kind::For || kind == Kind::Else;
}

bool closes(Kind kind) {
    return kind == Kind::EndIf || kind == Kind::EndFor || kind == Kind::Else;
}

/// For each tag that opens something, the index of the tag that closes it. The parser has made sure
/// that they fit.
std::vector<std::size_t> findEnds(const std::vector<SyntaxElement>& parts) {
    std::vector<std::size_t> ends(parts.size());
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (closes(parts[i].kind)) {
            ends[open.back()] = i;
            open.pop_back();
        }
        if (opens(parts[i].kind)) {
            open.push_back(i);
        }
    }
    return ends;
}

} // namespace

TemplateFile::TemplateFile(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), lines_(findLines(text_)) {
    PartList parts(parts_);
    fault_ = readSyntax(String(text_), parts);
    ends_ = findEnds(parts_);
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
    // The line break itself is the column after the last one, whether it is one byte or two.
    const std::size_t length = offset - std::min(offset, line.begin); // 0 in a byte-order mark
    return {line.number, countCodePoints(line.text.substr(0, length)) + 1};
}

Line TemplateFile::lineAt(std::size_t offset) const {
    const auto after = std::upper_bound(lines_.begin() + 1, lines_.end(), offset);
    const std::size_t begin = after[-1];
    std::string_view line = std::string_view(text_).substr(begin);
    line = line.substr(0, line.find('\n'));
    if (line.ends_with('\r') && begin + line.size() < text_.size()) {
        line.remove_suffix(1);
    }
    return {static_cast<std::size_t>(after - lines_.begin()), begin, line};
}

} // namespace kel::Stencilor::Analysis
