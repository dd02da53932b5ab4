#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/text/JsonText.h>

#include <nlohmann/json.hpp>

namespace kel::Stencilor::Analysis {

namespace {

using Json = nlohmann::ordered_json;

Json describePlace(const Place& place) {
    const Position begin = place.file->positionOf(place.range.begin);
    const Position end = place.file->positionOf(place.range.end);
    return {{"file", place.file->name()},
            {"line", begin.line},
            {"column", begin.column},
            {"endLine", end.line},
            {"endColumn", end.column}};
}

Json describeFinding(const Finding& finding) {
    Json result = {{"rule", infoOf(finding.rule).id},
                   {"severity", severityName(finding.severity())},
                   {"message", finding.message}};
    result.update(describePlace(finding.place));
    result["notes"] = Json::array();
    for (const Note& note : finding.notes) {
        Json described = {{"message", note.message}};
        described.update(describePlace(note.place));
        result["notes"].push_back(std::move(described));
    }
    return result;
}

} // namespace

std::string formatJson(const std::vector<Finding>& findings) {
    return jsonDocument({{"findings", Json::array()}}, "findings", findings.size(),
                        [&findings](std::size_t i) { return describeFinding(findings[i]); });
}

} // namespace kel::Stencilor::Analysis
