#ifndef TOOLS_STENCILOR_LSP_CLIENT_H
#define TOOLS_STENCILOR_LSP_CLIENT_H

#include <tools/stencilor/lsp/IndexedText.h>

namespace stencilor::lsp {

/// What the client can do.
struct Client {
    Encoding encoding = Encoding::Utf16;
    bool showsRelatedInformation = false;
    bool watchesFiles = false; ///< where it is asked to
    bool showsTree = false;    ///< document symbols inside each other
    bool takesLiteralActions = false;
    bool takesSnippets = false;
};

/// Of the `capabilities` of the client.
Client clientOf(const Json& capabilities);

} // namespace stencilor::lsp

#endif
