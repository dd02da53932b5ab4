#include <libKel/String.h>
#include <libStencilorAnalysis/template/TagRepair.h>
#include <libStencilorAnalysis/text/Suggestion.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;
using Expected = SyntaxExpectation;

/// The possible interpretations of a malformed tag.
enum class Taken { Substitution, If, For, Else, EndIf, EndFor };

const char* textOf(Taken taken) {
    switch (taken) {
    case Taken::Substitution:
        return "{{ a }}";
    case Taken::If:
        return "{% if a %}";
    case Taken::For:
        return "{% for a in a %}";
    case Taken::Else:
        return "{% else %}";
    case Taken::EndIf:
        return "{% endif %}";
    case Taken::EndFor:
        break;
    }
    return "{% endfor %}";
}

/// Tags of other languages whose content is not parsed.
constexpr std::string_view rawTags[] = {"raw", "verbatim", "comment", "noparse", "literal"};

/// This includes the tags that belong to reported ones.
constexpr std::size_t mostRepairs = 3 * mostFaults;

bool isKeywordHere(std::string_view word) {
    constexpr std::string_view keywords[] = {"if", "for", "else", "endif", "endfor", "include"};
    return std::find(std::begin(keywords), std::end(keywords), word) != std::end(keywords);
}

/// Tags of other languages that may have an `else`.
bool mayHaveElse(std::string_view word) {
    constexpr std::string_view words[] = {"unless", "case", "when", "switch", "foreach", "while"};
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

bool isLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_';
}

/// The end of a quoted text at the beginning of a tag, which may contain braces; otherwise `begin`.
std::size_t skipLiteral(std::string_view text, std::size_t begin) {
    const std::size_t opened = text.find_first_not_of(" \t", begin);
    if (opened == text.npos || (text[opened] != '\'' && text[opened] != '"')) {
        return begin;
    }
    const std::size_t closed = text.find_first_of(std::string{text[opened], '\n'}, opened + 1);
    return closed != text.npos && text[closed] == text[opened] ? closed + 1 : begin;
}

/// The end of a malformed tag: after its closing delimiter, otherwise before the next tag or the
/// end of the line.
std::size_t findTagEnd(std::string_view text, std::size_t begin) {
    const bool substitution = text[begin + 1] == '{';
    const std::size_t first = std::min(text.find_first_not_of('{', begin + 2), text.size());
    const bool triple = substitution && first > begin + 2;
    const std::size_t inside = skipLiteral(text, first);
    const std::string_view closer = triple ? "}}}" : substitution ? "}}" : "%}";
    const std::size_t next =
        std::min({text.find("{{", inside), text.find("{%", inside), text.size()});
    const std::string_view part = text.substr(0, next);
    for (const std::string_view each : {closer, closer.substr(0, 2)}) {
        if (const std::size_t end = part.find(each, inside); end != part.npos) {
            return end + each.size();
        }
    }
    return std::min(part.find('\n', inside), part.size());
}

class Reader {
  public:
    explicit Reader(std::string_view text) : text_(text.substr(0, text.find('\0'))) {}

    TemplateFaults read(std::vector<SyntaxElement>& parts) {
        Parts first(*this, parts);
        if (!readSyntax(String(text_), first).isPresent()) {
            return {};
        }
        parts.clear();
        for (;;) {
            Blocks blocks;
            const SyntaxFault fault = readSyntax(String(text_), blocks);
            if (!fault.isPresent()) {
                break;
            }
            if (!treat(fault, blocks.open)) {
                found_.areAll = false;
                break;
            }
        }
        Parts all(*this, parts);
        readSyntax(String(text_), all);
        return std::move(found_);
    }

  private:
    struct Block {
        Kind kind;
        bool inElse;
    };

    /// Keeps track of the open blocks.
    struct Blocks final : SyntaxVisitor {
        std::vector<Block> open;

        void visit(const SyntaxElement& element) override {
            if (element.kind == Kind::If || element.kind == Kind::For) {
                open.push_back({element.kind, false});
            } else if (element.kind == Kind::EndIf || element.kind == Kind::EndFor) {
                open.pop_back();
            } else if (element.kind == Kind::Else) {
                open.back().inElse = true;
            }
        }
    };

    /// A range of the repaired text that differs from the original one.
    struct Edit {
        unsigned int begin; // in the repaired text
        unsigned int end;
        SyntaxRange original;
    };

    /// Receives the parts of the repaired text.
    struct Parts final : SyntaxVisitor {
        Parts(const Reader& from, std::vector<SyntaxElement>& to) : reader(from), parts(to) {}

        void visit(const SyntaxElement& element) override {
            while (next < reader.edits_.size() && reader.edits_[next].end <= element.whole.begin) {
                ++next;
            }
            if (next == reader.edits_.size() || element.whole.end <= reader.edits_[next].begin) {
                parts.push_back({element.kind, reader.mapRange(element.whole),
                                 reader.mapRange(element.name), reader.mapRange(element.list)});
            } else if (element.kind != Kind::Substitution && element.kind != Kind::Text) {
                parts.push_back({element.kind, reader.edits_[next].original, {}, {}});
            }
        }

        const Reader& reader;
        std::vector<SyntaxElement>& parts;
        std::size_t next = 0;
    };

    /// Returns false if there are too many faults.
    bool treat(const SyntaxFault& fault, const std::vector<Block>& open) {
        if (fault.tag == text_.size() || text_.compare(fault.tag, 1, "{") != 0) {
            return closeAll(fault, open);
        }
        const SyntaxRange tag = {fault.tag,
                                 static_cast<unsigned int>(findTagEnd(text_, fault.tag))};
        const std::string_view tagText =
            std::string_view(text_).substr(tag.begin, tag.end - tag.begin);
        const std::string word = keywordOf(tagText);
        if (isSilent(tagText, word, fault.expected, open)) {
            repair(tag,
                   textOf(fault.expected == Expected::EndIfEnd    ? Taken::EndIf
                          : fault.expected == Expected::EndForEnd ? Taken::EndFor
                                                                  : Taken::Substitution),
                   owner_);
            return found_.repairs.size() < mostRepairs;
        }
        if (!add(fault, tag)) {
            return false;
        }
        noteForeign(tagText, word);
        repair(endOfRaw(tag, word), takenFor(tagText, word, fault.expected, open),
               found_.faults.size() - 1);
        return true;
    }

    bool add(const SyntaxFault& fault, SyntaxRange tag) {
        if (found_.faults.size() == mostFaults) {
            return false;
        }
        SyntaxFault mapped = fault;
        mapped.offset = mapOffset(fault.offset);
        mapped.tag = mapOffset(fault.tag);
        mapped.block = mapRange(fault.block);
        found_.faults.push_back({mapped, placeOf(tag)});
        return true;
    }

    /// Closes all blocks at the end of the text.
    bool closeAll(const SyntaxFault& fault, const std::vector<Block>& open) {
        const auto size = static_cast<unsigned int>(text_.size());
        if (!add(fault, {size, size})) {
            return false;
        }
        std::string closers =
            text_.ends_with('{') ? "\n" : ""; // which would join the first of them
        for (auto block = open.rbegin(); block != open.rend(); ++block) {
            closers += textOf(closerOf(*block));
        }
        repair({size, size}, closers, found_.faults.size() - 1);
        return true;
    }

    static Taken closerOf(const Block& block) {
        return block.kind == Kind::For ? Taken::EndFor : Taken::EndIf;
    }

    /// True for a tag that belongs to a reported one.
    bool isSilent(std::string_view tag, const std::string& word, Expected expected,
                  const std::vector<Block>& open) {
        const bool isKeyword = expected == Expected::Keyword || expected == Expected::KeywordInIf ||
                               expected == Expected::KeywordInElse ||
                               expected == Expected::KeywordInFor;
        if (tag.starts_with("{{")) {
            const std::size_t first = tag.find_first_not_of("{~ \t");
            return first != tag.npos && tag[first] == '/' && takeForeign("#");
        }
        if (expected == Expected::EndIfEnd || expected == Expected::EndForEnd) {
            return takeForeign(word.substr(3));
        }
        if (!isKeyword) {
            return false;
        }
        if (word == "else" &&
            (open.empty() || open.back().kind == Kind::For || open.back().inElse)) {
            const auto owner =
                std::find_if(foreign_.rbegin(), foreign_.rend(),
                             [](const Foreign& each) { return mayHaveElse(each.word); });
            owner_ = owner == foreign_.rend() ? 0 : owner->fault;
            return owner != foreign_.rend();
        }
        if (word.starts_with("end") && takeForeign(word.substr(3))) {
            return true;
        }
        std::vector<std::size_t>& owed = word == "endif" ? owedIfs_ : owedFors_;
        const Kind kind = word == "endif" ? Kind::If : Kind::For;
        const bool closes = std::any_of(open.begin(), open.end(),
                                        [kind](const Block& block) { return block.kind == kind; });
        if ((word == "endif" || word == "endfor") && !closes && !owed.empty()) {
            owner_ = owed.back();
            owed.pop_back();
            return true;
        }
        return false;
    }

    bool takeForeign(std::string_view word) {
        const auto found = std::find_if(foreign_.rbegin(), foreign_.rend(),
                                        [word](const Foreign& each) { return each.word == word; });
        if (found == foreign_.rend()) {
            return false;
        }
        owner_ = found->fault;
        foreign_.erase(std::next(found).base());
        return true;
    }

    void noteForeign(std::string_view tag, const std::string& word) {
        if (tag.starts_with("{{")) {
            const std::size_t first = tag.find_first_not_of("{~ \t");
            if (first != tag.npos && (tag[first] == '#' || tag[first] == '^')) {
                foreign_.push_back({"#", found_.faults.size() - 1});
            }
        } else if (!word.empty() && !isKeywordHere(word)) {
            foreign_.push_back({word, found_.faults.size() - 1});
        }
    }

    /// The range from a tag whose content is not parsed to its end tag.
    SyntaxRange endOfRaw(SyntaxRange tag, const std::string& word) {
        if (std::find(std::begin(rawTags), std::end(rawTags), word) == std::end(rawTags)) {
            return tag;
        }
        for (std::size_t at = text_.find("{%", tag.end); at != text_.npos;
             at = text_.find("{%", at + 2)) {
            const std::size_t end = findTagEnd(text_, at);
            if (keywordOf(std::string_view(text_).substr(at, end - at)) == "end" + word) {
                return {tag.begin, static_cast<unsigned int>(end)};
            }
        }
        return tag;
    }

    std::string takenFor(std::string_view tag, const std::string& word, Expected expected,
                         const std::vector<Block>& open) {
        switch (expected) {
        case Expected::IfName:
        case Expected::IfEnd:
            return textOf(Taken::If);
        case Expected::ForVariable:
        case Expected::ForIn:
        case Expected::ForList:
        case Expected::ForEnd:
            return textOf(Taken::For);
        case Expected::ElseEnd:
            return textOf(word == "else" && tag.find("if") == tag.npos ? Taken::Else
                                                                       : Taken::Substitution);
        case Expected::EndIfEnd:
            return textOf(Taken::EndIf);
        case Expected::EndForEnd:
            return textOf(Taken::EndFor);
        case Expected::Keyword:
        case Expected::KeywordInIf:
        case Expected::KeywordInElse:
        case Expected::KeywordInFor:
            return takenForKeyword(word, open);
        default:
            return textOf(Taken::Substitution);
        }
    }

    std::string takenForKeyword(const std::string& word, const std::vector<Block>& open) {
        static const std::vector<std::string> keywords = {"if",    "for",    "else",
                                                          "endif", "endfor", "include"};
        static const KnownWords known(keywords);
        const std::string_view near = known.findNearest(word);
        const std::string_view keyword = near.empty() ? std::string_view(word) : near;
        if (keyword == "if") {
            return textOf(Taken::If);
        }
        if (keyword == "for") {
            return textOf(Taken::For);
        }
        if (open.empty()) {
            return textOf(Taken::Substitution);
        }
        if (keyword == "else" && open.back().kind == Kind::If && !open.back().inElse) {
            return textOf(Taken::Else);
        }
        if (keyword == "end") {
            return textOf(closerOf(open.back()));
        }
        return keyword == "endif"    ? closeTo(Kind::If, open)
               : keyword == "endfor" ? closeTo(Kind::For, open)
                                     : textOf(Taken::Substitution);
    }

    /// Inner blocks are closed, too. Their own end tags may follow later, and are then ignored.
    std::string closeTo(Kind kind, const std::vector<Block>& open) {
        std::string closers;
        for (auto block = open.rbegin(); block != open.rend(); ++block) {
            closers += textOf(closerOf(*block));
            if (block->kind == kind) {
                return closers;
            }
            (block->kind == Kind::If ? owedIfs_ : owedFors_).push_back(found_.faults.size() - 1);
        }
        return textOf(Taken::Substitution);
    }

    void repair(SyntaxRange tag, const std::string& replacement, std::size_t fault) {
        const SyntaxRange original = placeOf(tag);
        text_.replace(tag.begin, tag.end - tag.begin, replacement);
        edits_.push_back(
            {tag.begin, static_cast<unsigned int>(tag.begin + replacement.size()), original});
        found_.repairs.push_back({original, replacement, fault});
    }

    unsigned int mapOffset(unsigned int offset) const { return placeOf({offset, offset}).begin; }

    /// The same for a range that may be empty.
    SyntaxRange mapRange(SyntaxRange range) const {
        return range.isEmpty() ? range : placeOf(range);
    }

    /// Maps a range of the repaired text to the original one.
    SyntaxRange placeOf(SyntaxRange range) const {
        const auto after = std::upper_bound(
            edits_.begin(), edits_.end(), range.begin,
            [](unsigned int value, const Edit& edit) { return value < edit.begin; });
        if (after == edits_.begin()) {
            return range;
        }
        const Edit& edit = after[-1];
        if (range.begin < edit.end) {
            return edit.original;
        }
        const unsigned int begin = edit.original.end + (range.begin - edit.end);
        return {begin, begin + (range.end - range.begin)};
    }

    struct Foreign {
        std::string word;
        std::size_t fault;
    };

    std::string text_;
    std::vector<Edit> edits_;
    std::vector<Foreign> foreign_;      // tags of other languages without an end tag so far
    std::vector<std::size_t> owedIfs_;  // the faults that closed blocks whose end tags may follow
    std::vector<std::size_t> owedFors_; // the same for loops
    std::size_t owner_ = 0;             // the fault that a silent tag belongs to
    TemplateFaults found_;
};

} // namespace

TemplateFaults readTemplate(std::string_view text, std::vector<SyntaxElement>& parts) {
    return Reader(text).read(parts);
}

std::string keywordOf(std::string_view tag) {
    std::string word;
    std::size_t at = std::min(tag.find_first_not_of("{%-+~* \t\r\n"), tag.size());
    for (; at < tag.size() && isLetter(tag[at]); ++at) {
        word += tag[at] >= 'A' && tag[at] <= 'Z' ? static_cast<char>(tag[at] - 'A' + 'a') : tag[at];
    }
    return word;
}

} // namespace kel::Stencilor::Analysis
