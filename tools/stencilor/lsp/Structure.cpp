#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/lsp/Place.h>
#include <tools/stencilor/lsp/Requests.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

// The structure of a template: symbols, folding, selection, matching tags.

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::SyntaxElement;
using kel::Stencilor::SyntaxRange;
using Kind = SyntaxElement::Kind;

namespace {

/// Deeper blocks are omitted from nested results.
constexpr std::size_t deepestShown = 50;

/// Kinds of symbols.
constexpr int symbolOfFile = 1;
constexpr int symbolOfBoolean = 17;
constexpr int symbolOfArray = 18;

std::string nameOfSymbol(const TemplateFile& file, const SyntaxElement& tag) {
    const std::string name = shorten(file.slice(tag.name));
    switch (tag.kind) {
    case Kind::For:
        return "for " + name + " in " + shorten(file.slice(tag.list));
    case Kind::If:
        return "if " + name;
    default:
        return "include " + name;
    }
}

Json describeSymbol(const Document& document, const SyntaxElement& tag, SyntaxRange whole) {
    const int kind = tag.kind == Kind::For  ? symbolOfArray
                     : tag.kind == Kind::If ? symbolOfBoolean
                                            : symbolOfFile;
    return {{"name", nameOfSymbol(document.syntax(), tag)},
            {"kind", kind},
            {"range", document.rangeOf(whole)},
            {"selectionRange", document.rangeOf(tag.whole)}};
}

/// The blocks and includes of a template, with their nesting.
class SymbolTree {
  public:
    explicit SymbolTree(const Document& document) : document_(document) {}

    Json build() {
        const TemplateFile& file = document_.syntax();
        for (const BlockTags& block : findBlocks(file)) {
            blocks_[block.open] = &file.parts()[block.close];
        }
        for (std::size_t i = 0; i < file.parts().size(); ++i) {
            visit(file.parts()[i], i);
        }
        return std::move(open_.front());
    }

  private:
    void visit(const SyntaxElement& part, std::size_t index) {
        if (part.kind == Kind::If || part.kind == Kind::For) {
            begin(part, index);
        } else if (part.kind == Kind::EndIf || part.kind == Kind::EndFor) {
            end();
        } else if (part.kind == Kind::Include && skipped_ == 0) {
            open_.back().push_back(describeSymbol(document_, part, part.whole));
        }
    }

    void begin(const SyntaxElement& part, std::size_t index) {
        const auto found = blocks_.find(index);
        if (skipped_ > 0 || open_.size() > deepestShown || found == blocks_.end() ||
            part.name.isEmpty()) {
            ++skipped_;
            return;
        }
        symbols_.push_back(
            describeSymbol(document_, part, {part.whole.begin, found->second->whole.end}));
        open_.push_back(Json::array());
    }

    void end() {
        if (skipped_ > 0) {
            --skipped_;
            return;
        }
        Json symbol = std::move(symbols_.back());
        symbols_.pop_back();
        symbol["children"] = std::move(open_.back());
        open_.pop_back();
        open_.back().push_back(std::move(symbol));
    }

    const Document& document_;
    std::map<std::size_t, const SyntaxElement*> blocks_; // the closing tag, by the opening one
    std::vector<Json> open_{Json::array()};              // the symbols in the open blocks
    std::vector<Json> symbols_;                          // of those blocks
    std::size_t skipped_ = 0;                            // open blocks that are not shown
};

/// For clients that show a flat list of symbols.
Json listSymbols(const Document& document) {
    const TemplateFile& file = document.syntax();
    Json symbols = Json::array();
    for (const SyntaxElement& part : file.parts()) {
        const bool isShown =
            part.kind == Kind::If || part.kind == Kind::For || part.kind == Kind::Include;
        if (isShown && !part.name.isEmpty()) {
            Json symbol = describeSymbol(document, part, part.whole);
            symbol["location"] = {{"uri", document.uri}, {"range", symbol["range"]}};
            symbol.erase("range");
            symbol.erase("selectionRange");
            symbols.push_back(std::move(symbol));
        }
    }
    return symbols;
}

void addFold(const Document& document, std::size_t from, std::size_t to, Json& folds) {
    const auto& parts = document.syntax().parts();
    const std::size_t first = document.text.positionOf(parts[from].whole.begin).line;
    const std::size_t last = document.text.positionOf(parts[to].whole.begin).line;
    if (last > first + 1) {
        folds.push_back({{"startLine", first}, {"endLine", last - 1}});
    }
}

/// From the outermost to the innermost.
std::vector<SyntaxRange> rangesAround(const TemplateFile& file, std::size_t offset) {
    std::vector<SyntaxRange> ranges = {{0, static_cast<unsigned int>(file.text().size())}};
    std::vector<std::size_t> open = blocksAround(file, offset);
    if (open.size() > deepestShown) {
        open.erase(open.begin(), open.end() - deepestShown);
    }
    for (const std::size_t tag : open) {
        const std::size_t middle = file.endOf(tag);
        if (middle < tag) {
            continue; // its end is unknown
        }
        const std::size_t end = file.afterBlock(tag) - 1;
        const bool isAfter = middle != end && isAfterElse(file, tag, offset);
        const auto& parts = file.parts();
        ranges.push_back({parts[tag].whole.begin, parts[end].whole.end});
        ranges.push_back(
            {parts[isAfter ? middle : tag].whole.end, parts[isAfter ? end : middle].whole.begin});
    }
    const std::size_t at = partAt(file, offset);
    if (at != TemplateFile::none) {
        ranges.push_back(file.parts()[at].whole);
    }
    if (const auto name = findNameAt(file, offset)) {
        ranges.push_back(name->range);
        const SyntaxRange prefix =
            name->role == NameAt::Role::Value ? prefixOf(file, name->part) : SyntaxRange();
        if (!prefix.isEmpty() && offset <= prefix.end) {
            ranges.push_back(prefix);
        }
    }
    return ranges;
}

} // namespace

Json documentSymbols(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    return session.client.showsTree ? SymbolTree(document).build() : listSymbols(document);
}

Json foldingRanges(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    Json folds = Json::array();
    for (const BlockTags& block : findBlocks(document.syntax())) {
        const bool hasElse = block.otherwise != TemplateFile::none;
        addFold(document, block.open, hasElse ? block.otherwise : block.close, folds);
        if (hasElse) {
            addFold(document, block.otherwise, block.close, folds);
        }
    }
    return folds;
}

Json selectionRanges(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    Json results = Json::array();
    for (const Json& position : params.at("positions")) {
        Json nested;
        SyntaxRange outer;
        for (const SyntaxRange range :
             rangesAround(document.syntax(), document.text.offsetOf(positionFrom(position)))) {
            const bool isSame = range.begin == outer.begin && range.end == outer.end;
            if (!isSame || nested.is_null()) {
                Json inner = {{"range", document.rangeOf(range)}};
                if (!nested.is_null()) {
                    inner["parent"] = std::move(nested);
                }
                nested = std::move(inner);
                outer = range;
            }
        }
        results.push_back(std::move(nested));
    }
    return results;
}

Json documentHighlights(Session& session, const Json& params) {
    const Place place = placeOf(session, params);
    const TemplateFile& file = place.file;
    Json highlights = Json::array();
    const auto add = [&](SyntaxRange range, int kind) {
        highlights.push_back({{"range", place.document.rangeOf(range)}, {"kind", kind}});
    };
    constexpr int text = 1;
    constexpr int read = 2;
    constexpr int write = 3;
    if (const std::size_t loop = findLoopAt(file, place.offset); loop != TemplateFile::none) {
        for (const SyntaxRange range : findVariable(file, loop)) {
            add(range, highlights.empty() ? write : read);
        }
        return highlights;
    }
    if (const auto name = findNameAt(file, place.offset)) {
        for (const SyntaxRange range : findSameNames(file, *name)) {
            add(range, text);
        }
        return highlights;
    }
    const std::size_t at = partAt(file, place.offset);
    for (const BlockTags& block : findBlocks(file)) {
        if (at != TemplateFile::none &&
            (block.open == at || block.otherwise == at || block.close == at)) {
            for (const std::size_t tag : {block.open, block.otherwise, block.close}) {
                if (tag != TemplateFile::none) {
                    add(file.parts()[tag].whole, text);
                }
            }
        }
    }
    return highlights;
}

} // namespace stencilor::lsp
