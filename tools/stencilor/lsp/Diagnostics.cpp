#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/lsp/Diagnostics.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::SyntaxRange;

namespace {

int severityOf(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return 1;
    case Severity::Warning:
        return 2;
    case Severity::Note:
        break;
    }
    return 3; // information
}

bool isLineEnd(char byte) {
    return byte == '\n' || byte == '\r';
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Editors do not show an empty range, or show the word before it, so this returns the character
/// after it or, at the end of a line or on an empty one, the last one before it.
SyntaxRange visibleRange(const std::string& text, SyntaxRange range) {
    if (!range.isEmpty()) {
        return range;
    }
    const std::string_view rest = std::string_view(text).substr(range.begin);
    if (!rest.empty() && !isLineEnd(rest.front())) {
        return {range.begin, range.begin + static_cast<unsigned int>(firstCodePoint(rest).size)};
    }
    unsigned int end = range.begin;
    while (end > 0 && isLineEnd(text[end - 1])) {
        --end;
    }
    unsigned int begin = end;
    while (begin > 0 && isContinuation(text[--begin])) {
    }
    return {begin, end};
}

/// The contents of files that are not open.
class ClosedTexts {
  public:
    explicit ClosedTexts(Encoding encoding) : encoding_(encoding) {}

    const IndexedText& of(const TemplateFile& file) {
        return texts_.try_emplace(&file, encoding_, file.text()).first->second;
    }

  private:
    Encoding encoding_;
    std::unordered_map<const TemplateFile*, IndexedText> texts_;
};

Json locationOf(const kel::Stencilor::Analysis::Place& place, const Documents& documents) {
    const std::string& name = place.file->name();
    const Document* const document = documents.find(name);
    ClosedTexts closed(documents.encoding());
    const IndexedText& text = document != nullptr ? document->text : closed.of(*place.file);
    return {{"uri", uriOf(documents, name)}, {"range", rangeIn(text, place.range)}};
}

/// A note at the location of its finding is added to the message. Notes at other locations are sent
/// to clients that can show them.
bool belongsToMessage(const Note& note, const Finding& finding) {
    return note.place.file == finding.place.file &&
           note.place.range.begin <= finding.place.range.begin &&
           finding.place.range.begin <= note.place.range.end;
}

Json describeFinding(const Finding& finding, const IndexedText& text, const Documents& documents,
                     const Client& client) {
    std::string message = finding.message;
    Json related = Json::array();
    for (const Note& note : finding.notes) {
        if (belongsToMessage(note, finding)) {
            message += "\n" + note.message;
        } else if (client.showsRelatedInformation) {
            related.push_back({{"location", locationOf(note.place, documents)},
                               {"message", showText(note.message)}});
        }
    }
    Json described = Json::object();
    described["range"] = rangeIn(text, visibleRange(text.text(), finding.place.range));
    described["severity"] = severityOf(finding.severity());
    described["code"] = infoOf(finding.rule).id;
    described["source"] = "stencilor";
    described["message"] = std::move(message);
    if (!related.empty()) {
        described["relatedInformation"] = std::move(related);
    }
    return described;
}

} // namespace

std::string uriOf(const Documents& documents, const std::string& name) {
    const Document* const document = documents.find(name);
    return document != nullptr ? document->uri : system::uriOf(name);
}

Json DiagnosticsPublisher::describe(const std::string& name) const {
    Json diagnostics = Json::array();
    const std::vector<Finding> findings = checks_.findingsIn(name);
    if (findings.empty()) {
        return diagnostics;
    }
    const Document* const document = documents_.find(name);
    ClosedTexts closed(client_.encoding);
    const IndexedText& text =
        document != nullptr ? document->text : closed.of(*findings.front().place.file);
    for (std::size_t i = 0; i < std::min(findings.size(), mostFindings); ++i) {
        diagnostics.push_back(describeFinding(findings[i], text, documents_, client_));
    }
    if (findings.size() > mostFindings) {
        diagnostics.back()["message"] = diagnostics.back()["message"].get<std::string>() + "\n" +
                                        std::to_string(findings.size() - mostFindings) +
                                        " more are not shown";
    }
    return diagnostics;
}

void DiagnosticsPublisher::send(const std::string& name, const Json& diagnostics) {
    const Document* const document = documents_.find(name);
    const Sent next{uriOf(documents_, name), diagnostics.empty() ? "" : write(diagnostics)};
    Sent& last = sent_[name];
    // A document need not have been open with the URI that its file has.
    if (last.uri != next.uri && !last.diagnostics.empty()) {
        last.diagnostics.clear();
        notify(last, nullptr);
    }
    const bool isSame = last.diagnostics == next.diagnostics;
    last = next;
    if (document != nullptr || !isSame) {
        notify(last, document);
    }
    if (last.diagnostics.empty()) {
        sent_.erase(name);
    }
}

void DiagnosticsPublisher::notify(const Sent& sent, const Document* document) {
    notify_("textDocument/publishDiagnostics",
            "{\"uri\":" + write(sent.uri) +
                ",\"diagnostics\":" + (sent.diagnostics.empty() ? "[]" : sent.diagnostics) +
                (document == nullptr ? "" : ",\"version\":" + std::to_string(document->version)) +
                "}");
}

void DiagnosticsPublisher::publish(std::set<std::string> names) {
    std::map<std::string, Json> ofContexts;
    for (const auto& context : checks_.contexts()) {
        if (!context->context) {
            const IndexedText text(client_.encoding, context->text);
            ofContexts[context->name] = Json::array({Json{{"range", rangeIn(text, context->place)},
                                                          {"severity", 1},
                                                          {"code", "context"},
                                                          {"source", "stencilor"},
                                                          {"message", context->fault}}});
        }
    }
    for (const std::string& name : std::exchange(contextNames_, {})) {
        if (!ofContexts.contains(name)) {
            send(name, Json::array());
        }
    }
    for (const auto& [name, diagnostics] : ofContexts) {
        contextNames_.insert(name);
        send(name, diagnostics);
    }
    for (const std::string& name : names) {
        send(name, describe(name));
    }
}

} // namespace stencilor::lsp
