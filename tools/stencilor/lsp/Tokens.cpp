#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <tools/stencilor/lsp/Requests.h>

#include <string>

// Semantic tokens: coloring that depends on more than the text.

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::SyntaxElement;
using kel::Stencilor::SyntaxRange;

namespace {

/// The index of each in the legend.
enum class TokenType { Keyword, Variable, Parameter, Property, String };

/// The tokens of a document in the order of its text.
class TokenList {
  public:
    explicit TokenList(const Document& document) : document_(document) {}

    void addTag(const TemplateFile& file, std::size_t index) {
        const SyntaxElement& tag = file.parts()[index];
        add(keywordRangeOf(file, tag), TokenType::Keyword);
        switch (tag.kind) {
        case SyntaxElement::Kind::Include:
            add(tag.name, TokenType::String);
            break;
        case SyntaxElement::Kind::For:
            add(tag.name, TokenType::Parameter);
            add(inOf(file, tag), TokenType::Keyword);
            addName(file, index, tag.list);
            break;
        default:
            addName(file, index, tag.name);
        }
    }

    std::string take() { return "{\"data\":[" + data_ + "]}"; }

  private:
    void addName(const TemplateFile& file, std::size_t tag, SyntaxRange name) {
        const SyntaxRange prefix = prefixOf(file, tag);
        if (prefix.isEmpty()) {
            add(name, TokenType::Variable);
        } else {
            add(prefix, TokenType::Parameter);
            add({prefix.end + 1, name.end}, TokenType::Property);
        }
    }

    /// Relative to the previous token. No token spans lines.
    void add(SyntaxRange range, TokenType type) {
        if (range.isEmpty()) {
            return;
        }
        const TextPosition at = document_.text.positionOf(range.begin);
        const std::size_t size = document_.text.positionOf(range.end).character - at.character;
        const bool isSameLine = at.line == last_.line;
        for (const std::size_t number :
             {at.line - last_.line, isSameLine ? at.character - last_.character : at.character,
              size, static_cast<std::size_t>(type), std::size_t{0}}) {
            data_ += (data_.empty() ? "" : ",") + std::to_string(number);
        }
        last_ = at;
    }

    const Document& document_;
    std::string data_; // numbers
    TextPosition last_;
};

std::string tokensIn(const Document& document, std::size_t begin, std::size_t end) {
    const TemplateFile& file = document.syntax();
    TokenList tokens(document);
    for (std::size_t i = 0; i < file.parts().size(); ++i) {
        const SyntaxElement& part = file.parts()[i];
        if (part.kind != SyntaxElement::Kind::Text && part.whole.end > begin &&
            part.whole.begin < end) {
            tokens.addTag(file, i);
        }
    }
    return tokens.take();
}

} // namespace

Json semanticTokensLegend() {
    return {{"tokenTypes", {"keyword", "variable", "parameter", "property", "string"}},
            {"tokenModifiers", Json::array()}};
}

std::string semanticTokens(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    return tokensIn(document, 0, document.text.text().size());
}

std::string semanticTokensInRange(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    const SyntaxRange range = rangeFrom(document.text, params.at("range"));
    return tokensIn(document, range.begin, range.end);
}

} // namespace stencilor::lsp
