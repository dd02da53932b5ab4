#ifndef TOOLS_STENCILOR_LSP_CLIENT_H
#define TOOLS_STENCILOR_LSP_CLIENT_H

#include <tools/stencilor/lsp/IndexedText.h>

namespace stencilor::lsp {

/// The capabilities of the client.
struct Client {
    Encoding encoding = Encoding::Utf16;
    bool showsRelatedInformation = false;
    bool watchesFiles = false; ///< on request
    bool showsTree = false;    ///< nested document symbols
    bool takesLiteralActions = false;
    bool takesSnippets = false;
    bool preparesRename = false;
    bool takesVersionedEdits = false;
};

/// Reads the `capabilities` of the client.
Client clientOf(const Json& capabilities);

} // namespace stencilor::lsp

#endif
