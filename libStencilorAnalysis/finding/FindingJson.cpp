#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/text/JsonText.h>

namespace kel::Stencilor::Analysis {

namespace {

void writePlace(JsonWriter& json, const Place& place) {
    const Position begin = place.file->positionOf(place.range.begin);
    const Position end = place.file->positionOf(place.range.end);
    json.member("file", place.file->name());
    json.member("line", begin.line);
    json.member("column", begin.column);
    json.member("endLine", end.line);
    json.member("endColumn", end.column);
}

void writeNote(JsonWriter& json, const Note& note) {
    json.beginObject();
    json.member("message", note.message);
    writePlace(json, note.place);
    json.endObject();
}

void writeFinding(JsonWriter& json, const Finding& finding) {
    json.beginObject();
    json.member("rule", infoOf(finding.rule).id);
    json.member("severity", severityName(finding.severity()));
    json.member("message", finding.message);
    writePlace(json, finding.place);
    json.name("notes");
    json.beginArray();
    for (const Note& note : finding.notes) {
        writeNote(json, note);
    }
    json.endArray();
    json.endObject();
}

} // namespace

std::string formatJson(const std::vector<Finding>& findings) {
    JsonWriter json;
    json.beginObject();
    json.name("findings");
    json.beginArray();
    for (const Finding& finding : findings) {
        writeFinding(json, finding);
    }
    json.endArray();
    json.endObject();
    return json.take();
}

} // namespace kel::Stencilor::Analysis
