#ifndef TOOLS_STENCILOR_LSP_PLACE_H
#define TOOLS_STENCILOR_LSP_PLACE_H

#include <libStencilorAnalysis/editor/PlaceNames.h>
#include <tools/stencilor/lsp/Session.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace stencilor::lsp {

/// A place in an open template, of `{"textDocument": …, "position": …}`.
struct Place {
    const Document& document;
    const kel::Stencilor::Analysis::TemplateFile& file;
    std::size_t offset;
};

Place placeOf(Session& session, const Json& params);

/// A context, and its names at a place.
struct KnownNames {
    std::shared_ptr<const ContextFile> context; ///< null if none is known
    std::vector<kel::Stencilor::Analysis::Moment> moments;
};

/// What the context has at a place, in its template or where that one is included: for a few
/// elements of each list around it.
/// Ownership: refers to the checks and to the syntax of the document.
KnownNames findNamesAt(Session& session, const Place& place);

/// The canonical path of the file that a path includes; empty if there is none.
std::string findIncluded(Session& session, const Document& document, const std::string& path);

} // namespace stencilor::lsp

#endif
