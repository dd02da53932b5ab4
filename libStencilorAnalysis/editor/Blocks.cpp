#include <libStencilorAnalysis/editor/Blocks.h>

#include <algorithm>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

std::string_view wordOf(Kind kind) {
    switch (kind) {
    case Kind::If:
        return "if";
    case Kind::For:
        return "for";
    case Kind::Else:
        return "else";
    case Kind::EndIf:
        return "endif";
    case Kind::EndFor:
        return "endfor";
    case Kind::Include:
        return "include";
    default:
        return "";
    }
}

/// An unclosed block ends at the end of the text, where its end may be typed.
bool isMissingAt(const SyntaxElement& part, std::size_t offset) {
    return part.whole.isEmpty() && part.whole.end == offset;
}

unsigned int skipSpaces(const TemplateFile& file, unsigned int at) {
    const std::string& text = file.text();
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) {
        ++at;
    }
    return at;
}

} // namespace

std::vector<BlockTags> findBlocks(const TemplateFile& file) {
    const auto& parts = file.parts();
    std::vector<BlockTags> blocks;
    std::vector<std::size_t> open; // the indices of open blocks
    for (std::size_t i = 0; i < parts.size(); ++i) {
        switch (parts[i].kind) {
        case Kind::If:
        case Kind::For:
            open.push_back(blocks.size());
            blocks.push_back({i, TemplateFile::none, TemplateFile::none, open.size() - 1});
            break;
        case Kind::Else:
            blocks[open.back()].otherwise = i;
            break;
        case Kind::EndIf:
        case Kind::EndFor:
            blocks[open.back()].close = i;
            open.pop_back();
            break;
        default:
            break;
        }
    }
    std::erase_if(blocks, [](const BlockTags& block) { return block.close == TemplateFile::none; });
    return blocks;
}

std::size_t partAt(const TemplateFile& file, std::size_t offset) {
    const auto& parts = file.parts();
    const auto after = std::upper_bound(
        parts.begin(), parts.end(), offset,
        [](std::size_t value, const SyntaxElement& part) { return value < part.whole.begin; });
    if (after == parts.begin() || offset > after[-1].whole.end) {
        return TemplateFile::none;
    }
    return static_cast<std::size_t>(after - parts.begin()) - 1;
}

std::vector<std::size_t> blocksAround(const TemplateFile& file, std::size_t offset) {
    const auto& parts = file.parts();
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < parts.size() && parts[i].whole.end <= offset; ++i) {
        const Kind kind = parts[i].kind;
        if (kind == Kind::If || kind == Kind::For) {
            open.push_back(i);
        } else if ((kind == Kind::EndIf || kind == Kind::EndFor) &&
                   !isMissingAt(parts[i], offset)) {
            open.pop_back();
        }
    }
    // A closing tag that contains the offset ends the inside of its block.
    const std::size_t at = partAt(file, offset);
    if (!open.empty() && at != TemplateFile::none && parts[at].whole.begin < offset &&
        offset < parts[at].whole.end &&
        (parts[at].kind == Kind::EndIf || parts[at].kind == Kind::EndFor)) {
        open.pop_back();
    }
    return open;
}

bool isAfterElse(const TemplateFile& file, std::size_t open, std::size_t offset) {
    const SyntaxElement& end = file.parts()[file.endOf(open)];
    return end.kind == Kind::Else && end.whole.end <= offset;
}

SyntaxRange keywordRangeOf(const TemplateFile& file, const SyntaxElement& tag) {
    const std::string_view word = wordOf(tag.kind);
    const unsigned int begin = skipSpaces(file, tag.whole.begin + 2);
    // A malformed tag may have been interpreted as one with another keyword.
    const bool isThere = !word.empty() && begin < tag.whole.end &&
                         file.slice({begin, tag.whole.end}).starts_with(word);
    return isThere ? SyntaxRange{begin, begin + static_cast<unsigned int>(word.size())}
                   : SyntaxRange{};
}

SyntaxRange inOf(const TemplateFile& file, const SyntaxElement& loop) {
    if (loop.list.isEmpty()) {
        return {};
    }
    const unsigned int begin = skipSpaces(file, loop.name.end);
    return {begin, begin + 2};
}

} // namespace kel::Stencilor::Analysis
