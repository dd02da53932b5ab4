#include <libStencilorAnalysis/editor/TagFix.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/lsp/Diagnostics.h>
#include <tools/stencilor/lsp/Requests.h>

#include <algorithm>
#include <string>
#include <vector>

// Quick fixes for unambiguous findings.

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::SyntaxRange;

namespace {

bool overlap(SyntaxRange one, SyntaxRange other) {
    return one.begin <= other.end && other.begin <= one.end;
}

bool wantsFixes(const Json& context) {
    const auto only = context.find("only");
    return only == context.end() || !only->is_array() ||
           std::any_of(only->begin(), only->end(),
                       [](const Json& kind) { return kind == "quickfix" || kind == ""; });
}

Json makeFix(const Client& client, const Document& document, SyntaxRange range,
             const std::string& text, const Json& diagnostics) {
    const Json edit = {{"range", document.rangeOf(range)}, {"newText", text}};
    Json fix = {{"title", "Change to " + showText(shorten(text))},
                {"kind", "quickfix"},
                {"isPreferred", true},
                {"edit", editDocument(client, document, Json::array({edit}))}};
    if (!diagnostics.empty()) {
        fix["diagnostics"] = diagnostics;
    }
    return fix;
}

/// The client's diagnostics that begin at a position.
Json diagnosticsAt(const Json& context, const Json& position) {
    Json found = Json::array();
    for (const Json& diagnostic : context.at("diagnostics")) {
        if (diagnostic.at("range").at("start") == position) {
            found.push_back(diagnostic);
        }
    }
    return found;
}

} // namespace

Json codeActions(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    const Json& context = params.at("context");
    Json actions = Json::array();
    if (!session.client.takesLiteralActions || !wantsFixes(context)) {
        return actions;
    }
    const SyntaxRange asked = rangeFrom(document.text, params.at("range"));
    const auto add = [&](SyntaxRange range, unsigned int place, const std::string& text) {
        const Json at = toJson(document.text.positionOf(place));
        actions.push_back(
            makeFix(session.client, document, range, text, diagnosticsAt(context, at)));
    };
    for (const TagFault& fault : document.syntax().faults().faults) {
        const auto fixed =
            overlap(fault.tag, asked) ? fixTag(document.syntax(), fault) : std::nullopt;
        if (fixed) {
            add(fault.tag, fault.fault.offset, *fixed);
        }
    }
    for (const Finding& finding : session.checks.findingsIn(document.name)) {
        // The document may have been changed since it was checked.
        const bool isCurrent = finding.place.file == &document.syntax();
        if (!finding.replacement.empty() && overlap(finding.place.range, asked) && isCurrent) {
            add(finding.place.range, finding.place.range.begin, finding.replacement);
        }
    }
    return actions;
}

} // namespace stencilor::lsp
