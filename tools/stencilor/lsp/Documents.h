#ifndef TOOLS_STENCILOR_LSP_DOCUMENTS_H
#define TOOLS_STENCILOR_LSP_DOCUMENTS_H

#include <libStencilorAnalysis/template/TemplateFile.h>
#include <tools/stencilor/lsp/IndexedText.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

namespace stencilor::lsp {

/// A document that is open in the editor.
struct Document {
    Document(Encoding encoding, std::string content) : text(encoding, std::move(content)) {}

    /// The syntax of the current text.
    const kel::Stencilor::Analysis::TemplateFile& syntax() const;

    /// The same, for keeping it.
    std::shared_ptr<const kel::Stencilor::Analysis::TemplateFile> sharedSyntax() const;

    Json rangeOf(kel::Stencilor::SyntaxRange range) const;

    /// Writes a range.
    void append(std::string& json, kel::Stencilor::SyntaxRange range) const;

    std::string uri;  ///< as the client writes it
    std::string name; ///< the canonical path, or the URI if it is not a file
    std::string languageId;
    std::int64_t version = 0;
    bool isFile = false;
    IndexedText text;

    /// Other files, such as contexts, may be open, too.
    bool isTemplate() const { return languageId != "json" && languageId != "jsonc"; }

    /// Null if it has changed.
    mutable std::shared_ptr<const kel::Stencilor::Analysis::TemplateFile> parsed;
};

/// The documents that are open in the editor, which replace the files.
/// Errors: throws `ResponseError`, and what the JSON library throws, for invalid parameters.
class Documents {
  public:
    void setEncoding(Encoding encoding) { encoding_ = encoding; }
    Encoding encoding() const { return encoding_; }

    Document& open(const Json& item);

    /// Applies changes to whole documents or ranges, in order.
    Document& change(const Json& params);

    /// Returns the name of the closed document.
    std::string close(const Json& params);

    /// Reads the parameters of a request, `{"textDocument": {"uri": …}}`.
    Document& of(const Json& params);

    /// Null if it is not open.
    const Document* find(const std::string& name) const;

    const std::map<std::string, std::unique_ptr<Document>>& all() const { return byName_; }

  private:
    Encoding encoding_ = Encoding::Utf16;
    std::map<std::string, std::unique_ptr<Document>> byName_;
    std::unordered_map<std::string, Document*> byUri_;
};

/// Converts a byte range of a document to the protocol.
Json rangeIn(const IndexedText& text, kel::Stencilor::SyntaxRange range);

/// The inverse. The end is not before the start.
kel::Stencilor::SyntaxRange rangeFrom(const IndexedText& text, const Json& range);

} // namespace stencilor::lsp

#endif
