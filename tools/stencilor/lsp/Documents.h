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

/// A text that is open in the editor.
struct Document {
    Document(Encoding encoding, std::string content) : text(encoding, std::move(content)) {}

    /// The syntax of the text as it is now.
    const kel::Stencilor::Analysis::TemplateFile& syntax() const;

    Json rangeOf(kel::Stencilor::SyntaxRange range) const;

    std::string uri;  ///< as the client writes it
    std::string name; ///< the canonical path; the URI of what is not a file
    std::string languageId;
    std::int64_t version = 0;
    bool isFile = false;
    IndexedText text;

    /// Context files and the like are opened, too.
    bool isTemplate() const { return languageId != "json" && languageId != "jsonc"; }

    mutable std::unique_ptr<kel::Stencilor::Analysis::TemplateFile> parsed; // null if it changed
};

/// The texts that are open in the editor, which count instead of the files.
/// Errors: throws `ResponseError`, and what the JSON library throws, where parameters are not as
///   they must be.
class Documents {
  public:
    void setEncoding(Encoding encoding) { encoding_ = encoding; }
    Encoding encoding() const { return encoding_; }

    Document& open(const Json& item);

    /// Carries out changes of whole texts or of ranges, in their order.
    Document& change(const Json& params);

    /// The name of the one that was closed.
    std::string close(const Json& params);

    /// Of the parameters of a request, `{"textDocument": {"uri": …}}`.
    Document& of(const Json& params);

    /// Null if it is not open.
    const Document* find(const std::string& name) const;

    const std::map<std::string, std::unique_ptr<Document>>& all() const { return byName_; }

  private:
    Encoding encoding_ = Encoding::Utf16;
    std::map<std::string, std::unique_ptr<Document>> byName_;
    std::unordered_map<std::string, Document*> byUri_;
};

/// A range of bytes of a text, as the protocol has it.
Json rangeIn(const IndexedText& text, kel::Stencilor::SyntaxRange range);

/// The inverse. The end is not before the start.
kel::Stencilor::SyntaxRange rangeFrom(const IndexedText& text, const Json& range);

} // namespace stencilor::lsp

#endif
