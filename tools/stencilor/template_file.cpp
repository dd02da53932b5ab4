#include <libKel/String.h>

#include <tools/stencilor/code_point.h>
#include <tools/stencilor/template_file.h>

#include <algorithm>
#include <utility>

namespace stencilor {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

class PartList final : public kel::Stencilor::SyntaxVisitor {
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

} // namespace

TemplateFile::TemplateFile(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), lines_(findLines(text_)) {
    PartList parts(parts_);
    fault_ = kel::Stencilor::readSyntax(kel::String(text_), parts);
}

std::string_view TemplateFile::textOf(SyntaxRange range) const {
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

} // namespace stencilor
