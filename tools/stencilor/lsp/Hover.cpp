#include <libStencilor/context/context_access.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/lsp/Place.h>
#include <tools/stencilor/lsp/Requests.h>

#include <optional>
#include <string>
#include <string_view>

// The kind of a name, its value, and how it was found.

namespace stencilor::lsp {

using namespace kel::Stencilor;
using namespace kel::Stencilor::Analysis;

namespace {

/// Escapes text for Markdown.
std::string code(std::string_view text) {
    std::string shown = shorten(text);
    std::string fence = "`";
    while (shown.find(fence) != shown.npos) {
        fence += '`';
    }
    return fence + (fence.size() > 1 ? " " : "") + shown + (fence.size() > 1 ? " " : "") + fence;
}

std::string describeCount(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string describeValue(const ContextBase& value) {
    if (const auto* const text = dynamic_cast<const ContextString*>(&value)) {
        return "string " + code(quote(internal::context_access::text(*text).view()));
    }
    if (const auto* const boolean = dynamic_cast<const ContextBoolean*>(&value)) {
        return internal::context_access::isTrue(*boolean) ? "boolean `true`" : "boolean `false`";
    }
    if (const auto* const list = dynamic_cast<const ContextIterable*>(&value)) {
        return "list of " + describeCount(list->size(), "element");
    }
    return "dictionary with " +
           describeCount(internal::context_access::children(value).size(), "name");
}

/// Describes the origin of the scope that has a name.
std::string describeScope(const PlaceScope& scope) {
    if (scope.file == nullptr) {
        return "in the context";
    }
    const SyntaxElement& tag = scope.file->parts()[scope.tag];
    const std::string line =
        ", line " + std::to_string(scope.file->positionOf(tag.whole.begin).line);
    if (tag.kind == SyntaxElement::Kind::For) {
        return "in element " + std::to_string(scope.element + 1) + " of " +
               std::to_string(scope.count) + " of " + code(scope.file->slice(tag.list)) +
               ", the list of " + code(scope.file->slice(tag.whole)) + line;
    }
    return "in the boolean " + code(scope.file->slice(tag.name)) + ", of " +
           code(scope.file->slice(tag.whole)) + line;
}

std::string describeName(const KnownNames& known, std::string_view name, const std::string& kind) {
    const std::string title = "**" + code(name) + "** ";
    for (const Moment& moment : known.moments) {
        if (const auto found = moment.find(name)) {
            const std::string key(
                name.substr(found->variable.empty() ? 0 : found->variable.size() + 1));
            return title + describeValue(*found->value) + "\n\nFound as " + code(key) + " " +
                   describeScope(moment.scopes[found->scope]) + ".";
        }
    }
    return title + kind +
           (known.context ? "\n\nThe context has no value with this name here." : "");
}

std::string describeVariable(const TemplateFile& file, std::size_t loop) {
    const SyntaxElement& tag = file.parts()[loop];
    return "**" + code(file.slice(tag.name)) + "** variable of the loop over " +
           code(file.slice(tag.list)) + "\n\nA prefix for the names in its elements: " +
           code(std::string(file.slice(tag.name)) + ".name") + ".";
}

std::string describe(Session& session, const Place& place, const NameAt& name) {
    const TemplateFile& file = place.file;
    if (name.role == NameAt::Role::Path) {
        const std::string path(file.slice(name.range));
        const std::string included = findIncluded(session, place.document, path);
        return included.empty() ? "This file does not exist." : "Includes " + code(included) + ".";
    }
    if (const std::size_t loop = findLoopAt(file, place.offset); loop != TemplateFile::none) {
        return describeVariable(file, loop);
    }
    return describeName(findNamesAt(session, place), file.slice(name.range),
                        kindName(nameOf(file, name.part).kind));
}

} // namespace

Json hover(Session& session, const Json& params) {
    const Place place = placeOf(session, params);
    const auto name = findNameAt(place.file, place.offset);
    if (!name) {
        return nullptr;
    }
    return {{"contents", {{"kind", "markdown"}, {"value", describe(session, place, *name)}}},
            {"range", place.document.rangeOf(name->range)}};
}

} // namespace stencilor::lsp
