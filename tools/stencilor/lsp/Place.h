#ifndef TOOLS_STENCILOR_LSP_PLACE_H
#define TOOLS_STENCILOR_LSP_PLACE_H

#include <libStencilorAnalysis/editor/PlaceNames.h>
#include <tools/stencilor/lsp/Session.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace stencilor::lsp {

/// A position in an open template, from `{"textDocument": …, "position": …}`.
struct Place {
    const Document& document;
    const kel::Stencilor::Analysis::TemplateFile& file;
    std::size_t offset;
};

Place placeOf(Session& session, const Json& params);

/// A context, and its names at a position.
struct KnownNames {
    std::shared_ptr<const ContextFile> context; ///< null if none is known
    std::vector<kel::Stencilor::Analysis::Moment> moments;
};

/// The names of the context at a position, in its template or where that is included, for a few
/// elements of each enclosing list.
/// Ownership: refers to the checks and to the syntax of the document.
KnownNames findNamesAt(Session& session, const Place& place);

/// The canonical path of the file that a path includes; empty if there is none.
std::string findIncluded(Session& session, const Document& document, const std::string& path);

} // namespace stencilor::lsp

#endif
