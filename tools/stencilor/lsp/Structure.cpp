#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/text/JsonText.h>
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

int kindOfSymbol(const SyntaxElement& tag) {
    return tag.kind == Kind::For  ? symbolOfArray
           : tag.kind == Kind::If ? symbolOfBoolean
                                  : symbolOfFile;
}

/// Writes the elements of an array.
class ListWriter {
  public:
    explicit ListWriter(const Document& document) : document_(document) {}

    /// Begins an element with its first members.
    void begin(const std::string& members) {
        json_ += (isFirst_ ? "{" : ",{") + members;
        isFirst_ = false;
    }

    void addRange(const char* name, SyntaxRange range) {
        json_ += std::string(",\"") + name + "\":";
        document_.append(json_, range);
    }

    void end() { json_ += '}'; }

    /// Begins a list in the element, as its last member.
    void beginList(const char* name) {
        json_ += std::string(",\"") + name + "\":[";
        isFirst_ = true;
    }

    /// Ends it, and the element.
    void endList() {
        json_ += "]}";
        isFirst_ = false;
    }

    std::string take() { return "[" + json_ + "]"; }

  private:
    const Document& document_;
    std::string json_;
    bool isFirst_ = true;
};

/// The name and kind of a symbol.
std::string describeSymbol(const TemplateFile& file, const SyntaxElement& tag) {
    return "\"name\":" + jsonString(nameOfSymbol(file, tag)) +
           ",\"kind\":" + std::to_string(kindOfSymbol(tag));
}

/// The blocks and includes of a template, with their nesting.
class SymbolTree {
  public:
    explicit SymbolTree(const Document& document)
        : file_(document.syntax()), blocks_(findBlocks(file_)), symbols_(document) {}

    std::string build() {
        for (std::size_t i = 0; i < file_.parts().size(); ++i) {
            visit(file_.parts()[i], i);
        }
        return symbols_.take();
    }

  private:
    void visit(const SyntaxElement& part, std::size_t index) {
        if (part.kind == Kind::If || part.kind == Kind::For) {
            begin(part, index);
        } else if (part.kind == Kind::EndIf || part.kind == Kind::EndFor) {
            end();
        } else if (part.kind == Kind::Include && skipped_ == 0) {
            add(part, part.whole);
            symbols_.end();
        }
    }

    void begin(const SyntaxElement& part, std::size_t index) {
        const bool isClosed = next_ < blocks_.size() && blocks_[next_].open == index;
        const std::size_t block = next_;
        next_ += isClosed ? 1 : 0;
        if (skipped_ > 0 || depth_ == deepestShown || !isClosed || part.name.isEmpty()) {
            ++skipped_;
            return;
        }
        add(part, {part.whole.begin, file_.parts()[blocks_[block].close].whole.end});
        symbols_.beginList("children");
        ++depth_;
    }

    void end() {
        if (skipped_ > 0) {
            --skipped_;
            return;
        }
        symbols_.endList();
        --depth_;
    }

    void add(const SyntaxElement& tag, SyntaxRange whole) {
        symbols_.begin(describeSymbol(file_, tag));
        symbols_.addRange("range", whole);
        symbols_.addRange("selectionRange", tag.whole);
    }

    const TemplateFile& file_;
    std::vector<BlockTags> blocks_;
    std::size_t next_ = 0; // of the blocks
    ListWriter symbols_;
    std::size_t depth_ = 0;   // of open blocks that are shown
    std::size_t skipped_ = 0; // open blocks that are not
};

/// For clients that show a flat list of symbols.
std::string listSymbols(const Document& document) {
    const TemplateFile& file = document.syntax();
    ListWriter symbols(document);
    for (const SyntaxElement& part : file.parts()) {
        const bool isShown =
            part.kind == Kind::If || part.kind == Kind::For || part.kind == Kind::Include;
        if (isShown && !part.name.isEmpty()) {
            symbols.begin(describeSymbol(file, part) +
                          ",\"location\":{\"uri\":" + jsonString(document.uri));
            symbols.addRange("range", part.whole);
            symbols.end();
            symbols.end();
        }
    }
    return symbols.take();
}

void addFold(const Document& document, std::size_t from, std::size_t to, ListWriter& folds) {
    const auto& parts = document.syntax().parts();
    const std::size_t first = document.text.positionOf(parts[from].whole.begin).line;
    const std::size_t last = document.text.positionOf(parts[to].whole.begin).line;
    if (last > first + 1) {
        folds.begin("\"startLine\":" + std::to_string(first) +
                    ",\"endLine\":" + std::to_string(last - 1));
        folds.end();
    }
}

/// The nested ranges around an offset, outermost first.
class RangesAround {
  public:
    RangesAround(const TemplateFile& file, std::size_t offset) : offset_(offset) {
        ranges_ = {{0, static_cast<unsigned int>(file.text().size())}};
        addBlocks(file);
        if (const std::size_t at = partAt(file, offset); at != TemplateFile::none) {
            add(file.parts()[at].whole);
        }
        if (const auto name = findNameAt(file, offset)) {
            add(name->range);
            if (name->role == NameAt::Role::Value) {
                add(prefixOf(file, name->part));
            }
        }
    }

    const std::vector<SyntaxRange>& get() const { return ranges_; }

  private:
    void addBlocks(const TemplateFile& file) {
        std::vector<std::size_t> open = blocksAround(file, offset_);
        if (open.size() > deepestShown) {
            open.erase(open.begin(), open.end() - deepestShown);
        }
        for (const std::size_t tag : open) {
            const std::size_t middle = file.endOf(tag);
            if (middle < tag) {
                continue; // its end is not known
            }
            const std::size_t end = file.afterBlock(tag) - 1;
            const auto& parts = file.parts();
            add({parts[tag].whole.begin, parts[end].whole.end});
            add({parts[tag].whole.end, parts[middle].whole.begin});
            if (middle != end) {
                add({parts[middle].whole.end, parts[end].whole.begin});
            }
        }
    }

    /// Editors reject ranges that are not inside each other, or not around the offset, as beside
    /// it between two parts.
    void add(SyntaxRange range) {
        const SyntaxRange outer = ranges_.back();
        const bool isAround = range.begin <= offset_ && offset_ <= range.end;
        const bool isInside = outer.begin <= range.begin && range.end <= outer.end;
        const bool isSmaller = range.end - range.begin < outer.end - outer.begin;
        if (isAround && isInside && isSmaller) {
            ranges_.push_back(range);
        }
    }

    std::size_t offset_;
    std::vector<SyntaxRange> ranges_;
};

struct Highlight {
    enum class Kind { Text = 1, Read = 2, Write = 3 };

    SyntaxRange range;
    Kind kind = Kind::Text;
};

std::vector<Highlight> highlightVariable(const TemplateFile& file, std::size_t loop) {
    std::vector<Highlight> highlights;
    for (const SyntaxRange range : findVariable(file, loop)) {
        highlights.push_back(
            {range, highlights.empty() ? Highlight::Kind::Write : Highlight::Kind::Read});
    }
    return highlights;
}

/// The tags of the block that a tag belongs to.
std::vector<Highlight> highlightBlock(const TemplateFile& file, std::size_t tag) {
    for (const BlockTags& block : findBlocks(file)) {
        if (block.open == tag || block.otherwise == tag || block.close == tag) {
            std::vector<Highlight> highlights = {{file.parts()[block.open].whole}};
            if (block.otherwise != TemplateFile::none) {
                highlights.push_back({file.parts()[block.otherwise].whole});
            }
            highlights.push_back({file.parts()[block.close].whole});
            return highlights;
        }
    }
    return {};
}

std::vector<Highlight> findHighlights(const TemplateFile& file, std::size_t offset) {
    if (const std::size_t loop = findLoopAt(file, offset); loop != TemplateFile::none) {
        return highlightVariable(file, loop);
    }
    if (const auto name = findNameAt(file, offset)) {
        std::vector<Highlight> highlights;
        for (const SyntaxRange range : findSameNames(file, *name)) {
            highlights.push_back({range});
        }
        return highlights;
    }
    const std::size_t part = partAt(file, offset);
    return part == TemplateFile::none ? std::vector<Highlight>() : highlightBlock(file, part);
}

} // namespace

std::string documentSymbols(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    return session.client.showsTree ? SymbolTree(document).build() : listSymbols(document);
}

std::string foldingRanges(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    ListWriter folds(document);
    for (const BlockTags& block : findBlocks(document.syntax())) {
        const bool hasElse = block.otherwise != TemplateFile::none;
        addFold(document, block.open, hasElse ? block.otherwise : block.close, folds);
        if (hasElse) {
            addFold(document, block.otherwise, block.close, folds);
        }
    }
    return folds.take();
}

Json selectionRanges(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    Json results = Json::array();
    for (const Json& position : params.at("positions")) {
        const std::size_t offset = document.text.offsetOf(positionFrom(position));
        const RangesAround around(document.syntax(), offset);
        Json nested;
        for (const SyntaxRange range : around.get()) {
            Json inner = {{"range", document.rangeOf(range)}};
            if (!nested.is_null()) {
                inner["parent"] = std::move(nested);
            }
            nested = std::move(inner);
        }
        results.push_back(std::move(nested));
    }
    return results;
}

std::string documentHighlights(Session& session, const Json& params) {
    const Place place = placeOf(session, params);
    ListWriter highlights(place.document);
    for (const Highlight& each : findHighlights(place.file, place.offset)) {
        highlights.begin("\"kind\":" + std::to_string(static_cast<int>(each.kind)));
        highlights.addRange("range", each.range);
        highlights.end();
    }
    return highlights.take();
}

} // namespace stencilor::lsp
