#include <tools/stencilor/lsp/Place.h>

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::SyntaxElement;

namespace {

constexpr std::size_t mostMoments = 20;

/// The position of an include, and its file.
struct Step {
    const TemplateFile* file;
    std::size_t offset;
};

/// The shortest chain of includes from the template of a check to a file: the position of each
/// include.
std::vector<Site> findWay(Check& check, const std::string& name) {
    std::map<const TemplateFile*, Step> cameFrom = {{check.file, {nullptr, 0}}};
    std::deque<const TemplateFile*> waiting = {check.file};
    while (!waiting.empty()) {
        const TemplateFile* const file = waiting.front();
        waiting.pop_front();
        if (file->name() == name) {
            std::vector<Site> way;
            for (Step at = cameFrom.at(file); at.file != nullptr; at = cameFrom.at(at.file)) {
                way.push_back({at.file, at.offset});
            }
            std::reverse(way.begin(), way.end());
            return way;
        }
        for (const SyntaxElement& part : file->parts()) {
            if (part.kind == SyntaxElement::Kind::Include && !part.name.isEmpty()) {
                const auto& included = check.files.include(std::string(file->slice(part.name)));
                if (included.file != nullptr &&
                    cameFrom.try_emplace(included.file, Step{file, part.whole.begin}).second) {
                    waiting.push_back(included.file);
                }
            }
        }
    }
    return {};
}

} // namespace

Place placeOf(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    return {document, document.syntax(),
            document.text.offsetOf(positionFrom(params.at("position")))};
}

KnownNames findNamesAt(Session& session, const Place& place) {
    Check* const check = session.checks.withContextFor(place.document.name);
    if (check == nullptr) {
        return {};
    }
    std::vector<Site> sites;
    if (check->file->name() != place.document.name) {
        sites = findWay(*check, place.document.name);
    }
    sites.push_back({&place.file, place.offset});
    const auto& context = check->around.context;
    return {context, findMoments(*context->context, sites, mostMoments)};
}

std::string findIncluded(Session& session, const Document& document, const std::string& path) {
    BufferedFolder folder(session.checks.rootOf(document), session.documents);
    return folder.locate(path);
}

} // namespace stencilor::lsp
