#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/ContextPlaces.h>
#include <tools/stencilor/lsp/Diagnostics.h>
#include <tools/stencilor/lsp/Place.h>
#include <tools/stencilor/lsp/Requests.h>

#include <string>
#include <utility>
#include <vector>

// Navigation: from a name or path to its origin, to its other occurrences, and to a new name.

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::SyntaxElement;
using kel::Stencilor::SyntaxRange;

namespace {

Json locationIn(const Document& document, SyntaxRange range) {
    return {{"uri", document.uri}, {"range", document.rangeOf(range)}};
}

Json startOf(const Documents& documents, const std::string& name) {
    return {{"uri", uriOf(documents, name)},
            {"range", {{"start", toJson({0, 0})}, {"end", toJson({0, 0})}}}};
}

/// The line of the context file.
Json placeInContext(Session& session, const Place& place, SyntaxRange name) {
    const KnownNames known = findNamesAt(session, place);
    for (const Moment& moment : known.moments) {
        const auto found = moment.find(place.file.slice(name));
        const auto range =
            found ? findNames(known.context->text, {found->path}).front() : std::nullopt;
        if (range) {
            const IndexedText text(session.client.encoding, known.context->text);
            return {{"uri", uriOf(session.documents, known.context->name)},
                    {"range", rangeIn(text, *range)}};
        }
    }
    return nullptr;
}

/// The loop whose variable is at a position.
/// Errors: throws `ResponseError` if there is none.
std::size_t loopToRename(const Place& place) {
    const std::size_t loop = findLoopAt(place.file, place.offset);
    if (loop == TemplateFile::none) {
        throw ResponseError(ErrorCode::RequestFailed,
                            "only loop variables can be renamed; other names come from the "
                            "context");
    }
    return loop;
}

} // namespace

Json definition(Session& session, const Json& params) {
    const Place place = placeOf(session, params);
    const auto name = findNameAt(place.file, place.offset);
    if (!name) {
        return nullptr;
    }
    if (name->role == NameAt::Role::Path) {
        const std::string path(place.file.slice(name->range));
        const std::string file = findIncluded(session, place.document, path);
        return file.empty() ? Json() : startOf(session.documents, file);
    }
    std::size_t loop = findLoopAt(place.file, place.offset);
    if (loop == TemplateFile::none) {
        Json location = placeInContext(session, place, name->range);
        if (!location.is_null()) {
            return location;
        }
        loop = findLoopOf(place.file, name->part);
    }
    return loop == TemplateFile::none ? Json()
                                      : locationIn(place.document, place.file.parts()[loop].name);
}

Json references(Session& session, const Json& params) {
    const Place place = placeOf(session, params);
    std::vector<SyntaxRange> ranges;
    if (const std::size_t loop = findLoopAt(place.file, place.offset); loop != TemplateFile::none) {
        ranges = findVariable(place.file, loop);
        if (!params.at("context").at("includeDeclaration").get<bool>()) {
            ranges.erase(ranges.begin());
        }
    } else if (const auto name = findNameAt(place.file, place.offset)) {
        ranges = findSameNames(place.file, *name);
    }
    Json locations = Json::array();
    for (const SyntaxRange range : ranges) {
        locations.push_back(locationIn(place.document, range));
    }
    return locations;
}

Json prepareRename(Session& session, const Json& params) {
    const Place place = placeOf(session, params);
    const std::size_t loop = loopToRename(place);
    const NameAt name = *findNameAt(place.file, place.offset);
    const SyntaxRange range =
        name.role == NameAt::Role::Variable ? name.range : prefixOf(place.file, name.part);
    return {{"range", place.document.rangeOf(range)},
            {"placeholder", place.file.slice(place.file.parts()[loop].name)}};
}

Json rename(Session& session, const Json& params) {
    const Place place = placeOf(session, params);
    const std::size_t loop = loopToRename(place);
    const std::string& name = params.at("newName").get_ref<const std::string&>();
    if (const std::string reason = whyNotRename(place.file, loop, name); !reason.empty()) {
        throw ResponseError(ErrorCode::RequestFailed, reason);
    }
    Json edits = Json::array();
    for (const SyntaxRange range : findVariable(place.file, loop)) {
        edits.push_back({{"range", place.document.rangeOf(range)}, {"newText", name}});
    }
    return editDocument(session.client, place.document, std::move(edits));
}

Json documentLinks(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    const TemplateFile& file = document.syntax();
    const BufferedFolder folder(session.checks.rootOf(document), session.documents);
    Json links = Json::array();
    for (const SyntaxElement& part : file.parts()) {
        if (part.kind == SyntaxElement::Kind::Include && !part.name.isEmpty()) {
            const std::string included = folder.locate(std::string(file.slice(part.name)));
            if (!included.empty()) {
                links.push_back({{"range", document.rangeOf(part.name)},
                                 {"target", uriOf(session.documents, included)}});
            }
        }
    }
    return links;
}

} // namespace stencilor::lsp
