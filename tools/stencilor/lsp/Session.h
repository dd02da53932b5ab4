#ifndef TOOLS_STENCILOR_LSP_SESSION_H
#define TOOLS_STENCILOR_LSP_SESSION_H

#include <tools/stencilor/lsp/Checks.h>
#include <tools/stencilor/lsp/Client.h>
#include <tools/stencilor/lsp/Documents.h>
#include <tools/stencilor/lsp/ResponseError.h>
#include <tools/stencilor/lsp/Workspace.h>

namespace stencilor::lsp {

/// The state for answering requests.
struct Session {
    Client client{};
    Documents documents{};
    Workspace workspace{documents};
    Checks checks{documents, workspace};
};

} // namespace stencilor::lsp

#endif
